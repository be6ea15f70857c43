#include "ui/windows/ask_title.h"

#include <utility>

#include "base/text.h"

namespace quendle {

TitleQuestion NewTitleQuestion(std::function<std::string(const std::string& title)> problem) {
  return {LoadText(TextId::kAskProfileName), TextId::kAddProfile, "", std::move(problem)};
}

std::string AskTitle(const TitleQuestion& question, const InputFunction& show_input,
                     const MessageFunction& show_message) {
  std::string title = question.old_title;
  for (;;) {
    title = show_input(question.prompt, LoadText(question.caption), title);
    if (title.empty() || title == question.old_title) return "";
    const std::string problem = question.problem(title);
    if (problem.empty()) return title;
    show_message(problem, kButtonsOk, kIconCritical, "");
  }
}

}  // namespace quendle
