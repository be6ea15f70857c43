// The names of entries in RAR 1.5 to 4.
#pragma once

#include <string>
#include <string_view>

namespace quendle::modules {

// A name in Unicode stands behind the same name in another encoding, with a NUL between them: the high byte that most
// characters have in common, and then pairs of bits that say how each character is made. Gives it in UTF-8. What is cut
// off, or is copied from where the other name has ended, is left out.
//   "test\0" 04 55 "B5AB" ⇒ "тест"
//   "abcdefgh.txt\0" 04 F4 82 10 00 20 41 ⇒ "ѱѲѳѴefР\u0441"
std::string NameInUnicode(std::string_view other, std::string_view packed);

}  // namespace quendle::modules
