#include "core/failure_text.h"

#include <algorithm>

#include "base/display.h"
#include "base/text.h"
#include "core/action_text.h"
#include "resources/string_table.h"

namespace quendle {
namespace {

constexpr std::size_t kMostProblems = 5;

std::string Problems(const std::vector<ExtractionProblem>& problems) {
  std::string text;
  const std::size_t shown = std::min(problems.size(), kMostProblems);
  for (std::size_t i = 0; i < shown; ++i) {
    const ExtractionProblem& problem = problems[i];
    text += "\r\n" + (problem.entry.empty() ? "" : ForDisplay(problem.entry) + ": ") +
            ForDisplay(LoadText(problem.reason));
  }
  if (shown < problems.size()) {
    text += "\r\n" + LoadText(TextId::kMoreProblems, {std::to_string(problems.size() - shown)});
  }
  return text;
}

}  // namespace

std::string FailureText(const std::string& path, const std::vector<ActionStep>& steps) {
  std::string text;
  for (const ActionStep& step : steps) {
    if (step.by_user || (step.result != StepResult::kFailed && step.result != StepResult::kSkipped)) continue;
    text += "\r\n" + LoadText(TextId::kStepFailed, {StepName(step.kind)});
    if (!step.to.empty()) text += ": " + ForDisplay(step.to);
    if (step.extraction && !step.extraction->problems.empty()) {
      text += Problems(step.extraction->problems);
    } else {
      text += "\r\n" + ForDisplay(LoadText(step.error));
    }
  }
  return text.empty() ? "" : ForDisplay(path) + text;
}

}  // namespace quendle
