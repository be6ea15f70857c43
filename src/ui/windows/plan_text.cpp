#include "ui/windows/plan_text.h"

#include "base/display.h"
#include "base/text.h"
#include "core/action_text.h"
#include "resources/string_table.h"

namespace quendle {
namespace {

std::string Note(const ActionStep& step, bool is_stopped) {
  if (is_stopped && step.result == StepResult::kSkipped) return LoadText(TextId::kPlanLeftOut);
  if (step.asks) return LoadText(TextId::kPlanAsks);
  if (!step.error.empty()) return LoadText(TextId::kPlanReason, {ReasonInOneLine(LoadText(step.error))});
  if (!step.extraction) return "";
  return LoadText(TextId::kPlanEntries,
                  {std::to_string(step.extraction->all), std::to_string(step.extraction->chosen)});
}

}  // namespace

std::string ReasonInOneLine(std::string reason) {
  for (std::size_t at; (at = reason.find("\r\n")) != std::string::npos;) reason.replace(at, 2, 1, ' ');
  return ForDisplay(reason);
}

std::vector<PlanLine> PlanLines(const std::vector<ActionStep>& steps) {
  std::vector<PlanLine> lines;
  lines.reserve(steps.size());
  bool is_stopped = false;
  for (const ActionStep& step : steps) {
    const bool fails = step.result == StepResult::kFailed;
    lines.push_back({LoadText(TextId::kPlanStep, {StepName(step.kind)}), ForDisplay(step.to),
                     Note(step, is_stopped), fails});
    is_stopped |= fails;
  }
  if (lines.empty()) lines.push_back({LoadText(TextId::kPlanNothing), "", ""});
  return lines;
}

}  // namespace quendle
