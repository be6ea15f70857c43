#include "ui/windows/plan_text.h"

#include "base/display.h"
#include "base/text.h"
#include "core/action_text.h"
#include "resources/string_table.h"

namespace quendle {
namespace {

// What would be replaced, in as many parts as there is something to say.
std::vector<std::string> ReplacementTexts(const std::optional<Replacements>& replaces) {
  if (!replaces) return {LoadText(TextId::kPlanReplacesUnknown)};
  std::vector<std::string> texts;
  const auto tell = [&texts](TextId text, std::size_t count) {
    if (count > 0) texts.push_back(LoadText(text, {std::to_string(count)}));
  };
  tell(TextId::kPlanReplaces, replaces->sure);
  tell(TextId::kPlanMayReplace, replaces->unsure);
  tell(TextId::kPlanAsksFor, replaces->asked);
  if (!replaces->is_whole) texts.push_back(LoadText(TextId::kPlanMayReplaceMore));
  return texts;
}

std::string ExtractionNote(const ExtractionReport& extraction) {
  std::string note = extraction.asks_for_password
                         ? LoadText(TextId::kPlanAsksPassword)
                         : LoadText(TextId::kPlanEntries,
                                    {std::to_string(extraction.all), std::to_string(extraction.chosen)});
  for (const std::string& text : ReplacementTexts(extraction.replaces))
    note += LoadText(TextId::kBetweenNames) + text;
  return LoadText(TextId::kPlanReason, {note});
}

std::vector<std::string> ReplacedNames(const ActionStep& step) {
  std::vector<std::string> names;
  if (!step.extraction || !step.extraction->replaces) return names;
  const Replacements& replaces = *step.extraction->replaces;
  for (const std::string& file : replaces.files) names.push_back(ForDisplay(file));
  if (replaces.All() > names.size())
    names.push_back(LoadText(TextId::kMoreProblems, {std::to_string(replaces.All() - names.size())}));
  return names;
}

std::string Note(const ActionStep& step, bool is_stopped) {
  if (is_stopped && step.result == StepResult::kSkipped) return LoadText(TextId::kPlanLeftOut);
  if (!step.error.empty()) return LoadText(TextId::kPlanReason, {ReasonInOneLine(LoadText(step.error))});
  if (step.extraction) return ExtractionNote(*step.extraction);
  return step.asks ? LoadText(TextId::kPlanAsks) : "";
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
                     Note(step, is_stopped), fails, ReplacedNames(step)});
    is_stopped |= fails;
  }
  if (lines.empty()) lines.push_back({LoadText(TextId::kPlanNothing), "", "", false, {}});
  return lines;
}

}  // namespace quendle
