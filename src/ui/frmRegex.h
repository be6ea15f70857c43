// Trying a pattern on a name.
#pragma once

#include <QWidget>
#include <string>

namespace quendle {

// Opens the tester with this pattern and, as the string, the name of the current target; modal to `owner`.
void OpenRegexTester(QWidget* owner, const std::string& pattern, const std::string& target_name);

}  // namespace quendle
