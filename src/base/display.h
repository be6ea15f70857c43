// Paths and names as they are shown: on a terminal or in a window nobody may be fooled by what a file is called, and one
// line stays one line.
#pragma once

#include <string>
#include <string_view>

#include "base/modString.h"
#include "reasons/reason.h"

namespace quendle {

// For a line of text, in which different names look different. Bytes that are not UTF-8 become \xNN, control
// characters, line separators and marks that change the direction of text \n, \t, \r or \u{NNNN}, a backslash
// \\.
//   a.txt             => a.txt
//   a, byte FF        => a\xFF
//   a, line break, b  => a\nb
//   a\b               => a\\b
// On Windows backslashes stand between the parts of a path, and are shown and typed as they are: there what is not shown
// as it stands is its number, or that of a byte, between marks.
//   a, line break, b  => a‹A›b      a, byte FF => a‹xFF›      a‹ => a‹2039›
std::string ForDisplay(std::string_view name, PathStyle style = kHostStyle);

// The same for the names in a reason, and whatever else in it is not the program's own, so that its sentence may have more
// lines than one.
Reason ForDisplay(const Reason& reason);

// The name that ForDisplay shows so. What no name is shown as is taken as it stands, character by character.
//   a.txt => a.txt      a\nb => a, line break, b      a\xFF => a, byte FF      a\\b => a\b      a\q => a\q
std::string FromDisplay(std::string_view shown, PathStyle style = kHostStyle);

// Line and paragraph separators, DEL and the C1 controls, and everything that reorders the text around it.
bool IsDeceptive(char32_t character);

// For a string that may hold any character of UTF-8, as in JSON: bytes that are not UTF-8 become \xNN, a
// backslash \\.
std::string WithEscapedBytes(std::string_view name);

}  // namespace quendle
