#include "ui/windows/plan_text.h"

#include "base/text.h"

namespace quendle {
namespace {

GTEST_TEST(PlanLines, Rows) {
  const auto because = [](const Reason& reason) { return "（" + LoadText(reason) + "）"; };
  const Reason taken = why::kThereAlready;
  const Reason after = why::kNotTried;
  const struct {
    std::vector<ActionStep> steps;
    std::string text;
    std::vector<bool> fails;
  } rows[] = {
      {{}, "何もしません。", {false}},
      {{{StepKind::kMove, "/m/a\nb\xFF", StepResult::kPlanned, {}}}, "移動 → /m/a\\nb\\xFF", {false}},
      {{{StepKind::kExtract, "/x", StepResult::kPlanned, {}, ExtractionReport{1200, 0, {}, false, {}}}},
       "解凍 → /x（1200 個中 0 個）",
       {false}},
      {{{StepKind::kCopy, "/c/%1", StepResult::kFailed, taken},
        {StepKind::kMove, "", StepResult::kSkipped, after}},
       "コピー → /c/%1" + because(taken) + "\n移動 → （前の処理ができないため行いません）",
       {true, false}},
      {{{StepKind::kMove, "/m", StepResult::kSkipped, taken}}, "移動 → /m" + because(taken), {false}},
      {{{StepKind::kMove, "/m", StepResult::kFailed, Reason("one\r\ntwo")}}, "移動 → /m（one two）", {true}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.text);
    std::string text;
    std::vector<bool> fails;
    for (const PlanLine& line : PlanLines(row.steps)) {
      text.append(text.empty() ? "" : "\n").append(line.Whole());
      fails.push_back(line.fails);
    }
    EXPECT_EQ(text, row.text);
    EXPECT_EQ(fails, row.fails);
  }
}

}  // namespace
}  // namespace quendle
