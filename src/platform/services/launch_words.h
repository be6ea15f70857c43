// The parameters of a program as a user writes them in the settings.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quendle::platform {

// The words of `parameters`, separated by blanks or tabs outside double quotes. A backslash in front of a
// quote or a backslash makes that one meant; any other stands for itself. A quote that is not closed ends with
// the text. Every "%1" is `value`, which is never taken apart, whatever is in it.
//   --select %1         and /a b  => --select, /a b
//   "%1"                and /a b  => /a b
//   /e,%1               and /out  => /e,/out
//   a "" \"b\\          and /out  => a, an empty word, "b\ (the quote is part of it)
std::vector<std::string> LaunchWords(std::string_view parameters, std::string_view value);

}  // namespace quendle::platform
