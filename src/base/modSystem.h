// Folders, sorting and conversions that need more than one string.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/modString.h"
#include "reasons/result.h"

namespace quendle {

// Makes a folder with all its missing parents. True when the folder exists afterwards; otherwise `*why`, when
// given, says which folder could not be made and why. Those that were made, in any case, are appended to `*made`,
// when given.
bool MakeDirNested(const std::string& path, platform::Result* why = nullptr,
                   std::vector<std::string>* made = nullptr);

// Removes those of them that have nothing in them, after all for which they were made has failed.
void RemoveMadeFolders(const std::vector<std::string>& made);

// Sorts elements `lowest` to `highest` (both included) ascending by their upper-cased text. Elements that are
// equal but for case keep their order. O(n log n) comparisons and no recursion to speak of, whatever the
// input; indices outside the array, and a highest below lowest, leave it as it is.
//   "b", "A", "c" => "A", "b", "c"
void SortStrings(std::vector<std::string>* strings, std::int32_t lowest, std::int32_t highest);

// Settings text to a flag: a number other than 0, or the word true in any case. What cannot be converted is
// false.
//   "1" => true    "-1" => true    "0.5" => true    "0" => false    "True" => true    "yes" => false
bool ToBoolean(std::string_view text);

// Settings text to a number, blanks around it allowed; false when it is no number.
//   "3" => 3    " -1 " => -1    "2.5" => 2.5    "1e2" => 100    "x" => false
bool ToNumber(std::string_view text, double* number);

// The arguments in a command line without the program's own path: element 0 is always empty, arguments count
// from 1, at most `greatest` of them (itself at least 1) are kept. Blanks and tabs outside double quotes
// separate, each one of them, so two in a row have an empty argument between them; quotes only switch quoting
// and are not kept.
//   "C:\a b\x.zip" y.txt => "", "C:\a b\x.zip", "y.txt" (the quotes are part of the input)
//   a  b                  => "", "a", "", "b"
//   one blank             => "", "", ""
//   nothing               => ""
std::vector<std::string> SplitCommandLine(std::string_view text, std::int16_t greatest);

// A value outside its documented set reached code that cannot go on: says where and aborts.
[[noreturn]] void ProgrammingError(const char* what);

}  // namespace quendle
