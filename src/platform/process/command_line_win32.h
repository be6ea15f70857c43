// Command lines, which on Windows are one text that each program takes apart itself.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quendle::platform {

// The word so that programs take it for one, by the rules that nearly all of them follow: as it is, or in quotes, with
// backslashes in front of its own quotes.
//   a => a    a b => "a b"    (empty) => ""    a "b\ => "a \"b\\"
std::string QuotedWord(std::string_view word);

// `parameters` as the user wrote them, every "%1" of them being `value` so that it is one word whatever is in it, or a
// part of the word that it stands in.
//   /e,%1     and C:\a      => /e,C:\a
//   /e,%1     and C:\a b    => /e,"C:\a b"
//   "%1" -x   and C:\a b\   => "C:\a b\\" -x
std::string FilledParameters(std::string_view parameters, std::string_view value);

// The words of a command line that names files: separated by blanks or tabs outside quotes, which are not kept. No
// backslash makes a quote meant, since paths end with one and no name has a quote in it; pairs of them in front of a
// quote are how programs write single ones.
//   "C:\a b\" x  => C:\a b\, x    "C:\a b\\" x  => C:\a b\, x
std::vector<std::string> CommandLineWords(std::string_view command_line);

}  // namespace quendle::platform
