// What is wrong with a pattern, for the user who types it.
#pragma once

#include <string>

namespace quendle {

// One line in the language of the windows, with the place where the pattern goes wrong; empty for a pattern that can be
// used. What the engine says that has no translation stays as it says it.
//   "a(" => 2 文字目: 閉じ括弧「)」がありません
std::string PatternProblem(const std::string& pattern);

// The same for what Regex::Error() has said of the pattern, which may also have taken too long on some name.
std::string PatternProblem(const std::string& pattern, const std::string& error);

}  // namespace quendle
