// Paths and names as they are shown: on a terminal nobody may be fooled by what a file is called, and one
// line stays one line.
#pragma once

#include <string>
#include <string_view>

namespace quendle {

// For a line of text. Bytes that are not UTF-8 become \xNN, control characters, line separators and marks
// that change the direction of text become \n, \t, \r or \u{NNNN}, a backslash \\. `*escaped`, when given, is
// set when anything but a backslash had to be escaped, and only then are backslashes doubled.
//   "a.txt" => "a.txt"    "a\xFF" => "a\\xFF"    "a\nb" => "a\\nb"    "a\b" (backslash) => "a\b"
std::string ForDisplay(std::string_view name, bool* escaped = nullptr);

// For a string that may hold any character of UTF-8, as in JSON: only bytes that are not UTF-8 are escaped,
// as \xNN, and when there are any, backslashes as \\. `*escaped` is set then.
std::string WithEscapedBytes(std::string_view name, bool* escaped);

}  // namespace quendle
