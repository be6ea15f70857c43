// Asking for the title of a profile.
#pragma once

#include <functional>
#include <string>

#include "resources/string_table.h"
#include "ui/messages/modMsgBox.h"

namespace quendle {

struct TitleQuestion {
  std::string prompt;
  TextId caption;
  std::string old_title;  // of the profile that is to have another; empty: it is a new one
  // Why it may not have that title, for the user; empty when it may.
  std::function<std::string(const std::string& title)> problem;
};

// For a new profile.
TitleQuestion NewTitleQuestion(std::function<std::string(const std::string& title)> problem);

// Asks until a title is given that the profile may have; what was typed is not lost when it may not. Empty when the user
// gave up or left the title as it is.
std::string AskTitle(const TitleQuestion& question, const InputFunction& show_input,
                     const MessageFunction& show_message);

}  // namespace quendle
