// Asking for the title of a profile.
#pragma once

#include <functional>
#include <string>

#include "ui/modMsgBox.h"

namespace quendle {

// Asks until the answer is one that `problem_of` has nothing to say against; what was typed is offered again.
// Empty when the user gave up, or left `title` as it was.
std::string AskTitle(const MessageBoxes& boxes, const std::string& prompt, const std::string& caption,
                     const std::string& title,
                     const std::function<std::string(const std::string& typed)>& problem_of);

}  // namespace quendle
