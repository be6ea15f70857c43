#include "ui/ask_title.h"

namespace quendle {

std::string AskTitle(const MessageBoxes& boxes, const std::string& prompt, const std::string& caption,
                     const std::string& title,
                     const std::function<std::string(const std::string& typed)>& problem_of) {
  std::string typed = title;
  for (;;) {
    typed = boxes.show_input(prompt, caption, typed);
    if (typed.empty() || typed == title) return "";
    const std::string problem = problem_of(typed);
    if (problem.empty()) return typed;
    boxes.show_message(problem, kButtonsOk, kIconCritical, "");
  }
}

}  // namespace quendle
