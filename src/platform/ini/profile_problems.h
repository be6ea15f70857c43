// What keeps the text of an INI file from being read with certainty. A problem says where it is ("line 12: ..."),
// what it is, and what to do about it; it is empty when there is none. Lines are counted from 1 as editors count them, at
// any line break.
#pragma once

#include <string_view>

#include "reasons/reason.h"

namespace quendle::platform {

// Why key reads and whole sections (platform/ini/profile_lines.h) do not see the same sections in the file with
// these bytes, whose text this is: line ends of several kinds beside a header, blanks or text around one, one
// that is UTF-8 taken for the code page and so lost its "]", or one with characters that cannot be told from
// others. Rewriting whole sections of such a file would lose keys.
Reason SectionProblemOf(std::string_view bytes, std::string_view text);

// Why the bytes cannot be read: ones that stand for no character, NUL (files that a power cut emptied, UTF-16
// without its mark), half a UTF-16 unit at the end, UTF-16 that is not little-endian, or no converter for the
// code page. The first two do not count in comment lines, whose first character but blanks is ";".
Reason DecodingProblemOf(std::string_view bytes, std::string_view text);

}  // namespace quendle::platform
