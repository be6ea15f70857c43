// The file that names the entries to extract.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quendle::modules {

// The form in which names are compared: upper-cased, "/" between the parts.
//   "Dir\a.txt" => "DIR/A.TXT"
std::string ComparableName(std::string_view name);

// The form in which a module tells the name of an entry, and by which it is asked for it again: relative, so that it is
// the place below the destination that is chosen, and characters that a line of quoted names cannot carry (control
// characters, a quote at either end) are "_".
//   "/tmp/a.txt" => "tmp/a.txt"    "C:/x" => "x"    "a\nb" => "a_b"    "\"a\"" => "_a_"
std::string ListedName(std::string_view path);

// The names in the text of a response file, made comparable. Lines end with CR LF, LF or CR; a name stands in
// quotes or as it is; empty lines are none.
std::vector<std::string> ParseResponseFile(std::string_view text);

}  // namespace quendle::modules
