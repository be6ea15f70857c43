#include "ui/plan_text.h"

#include <QString>

#include "base/display.h"
#include "base/reasons.h"
#include "core/failure_text.h"
#include "resources/string_table.h"
#include "ui/text.h"

namespace quendle {
namespace {

std::string InOneLine(const std::string& text) {
  return FromQt(ToQt(text).replace("\r\n", " "));
}

std::string Note(const ActionStep& step) {
  if (!step.error.empty()) {
    return FromQt(Text(text_id::kPlanReason).arg(ToQt(ForDisplay(InOneLine(InJapanese(step.error))))));
  }
  if (!step.extraction) return "";
  return FromQt(Text(text_id::kPlanEntries)
                    .arg(QString::number(step.extraction->all), QString::number(step.extraction->chosen)));
}

}  // namespace

std::vector<PlanLine> PlanLines(const std::vector<ActionStep>& steps) {
  std::vector<PlanLine> lines;
  lines.reserve(steps.size());
  for (const ActionStep& step : steps) {
    lines.push_back({FromQt(Text(text_id::kPlanStep).arg(ToQt(StepName(step.kind)))), ForDisplay(step.to),
                     Note(step), step.result == StepResult::kFailed});
  }
  if (lines.empty()) lines.push_back({LoadText(text_id::kPlanNothing), "", ""});
  return lines;
}

std::string PlanText(const std::vector<ActionStep>& steps) {
  std::string text;
  for (const PlanLine& line : PlanLines(steps)) {
    if (!text.empty()) text += '\n';
    text += line.Whole();
  }
  return text;
}

}  // namespace quendle
