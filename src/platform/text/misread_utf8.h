// Text that somebody saved as UTF-8 where the ANSI code page was expected.
#pragma once

#include <string_view>

namespace quendle::platform {

// Are the bytes valid UTF-8 with at least one character of several bytes that is in everyday use: letters and
// punctuation of Latin, Greek, Cyrillic, Hebrew or Arabic, accents that follow their letter, and all characters
// of three and four bytes? Two half-width katakana are often another, which does not count.
//   "T\xC3\xA9l" => true    "\xC8\xBA" (ﾈｺ) => false    "a" => false    "\x95\x5C" (表) => false
bool LooksLikeUtf8(std::string_view bytes);

// The same of the bytes from which the code page made this text. Text of the code page hardly ever looks like
// that: it takes pairs such as ﾃｩ with nothing beside them but ASCII and more of them.
//   "Tﾃｩl" => true    "表" => false    "データ" => false    "é" => false, for it is not in the code page
bool LooksLikeMisreadUtf8(std::string_view text);

}  // namespace quendle::platform
