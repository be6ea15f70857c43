// What is wrong with a pattern, for the user who types it.
#pragma once

#include <string>

#include "base/regex.h"

namespace quendle {

// One line in the language of the windows, with the place where the pattern goes wrong; empty for a pattern that can be
// used.
//   "a(" => 2 文字目: 閉じ括弧「)」がありません
std::string PatternProblem(const std::string& pattern);

// The same for what `expression`, which is the pattern's, has met; it may also have taken too long on some name.
std::string PatternProblem(const std::string& pattern, const Regex& expression);

}  // namespace quendle
