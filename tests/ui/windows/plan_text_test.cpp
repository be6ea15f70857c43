#include "ui/windows/plan_text.h"

#include "base/text.h"

namespace quendle {
namespace {

GTEST_TEST(PlanLines, Rows) {
  const auto because = [](const Reason& reason) { return "（" + LoadText(reason) + "）"; };
  const Reason taken = why::kThereAlready;
  const Reason after = why::kNotTried;
  const auto extracts = [](const std::optional<Replacements>& replaces, bool asks_for_password = false) {
    ExtractionReport report{1200, 3, {}, false, {}};
    report.replaces = replaces;
    report.asks_for_password = asks_for_password;
    return std::vector{ActionStep{StepKind::kExtract, "/x", StepResult::kPlanned, {}, report, true}};
  };
  const struct {
    std::vector<ActionStep> steps;
    std::string text;
    std::vector<bool> fails;
  } rows[] = {
      {{}, "何もしません。", {false}},
      {{{StepKind::kMove, "/m/a\nb\xFF", StepResult::kPlanned, {}}}, "移動 → /m/a\\nb\\xFF", {false}},
      {extracts({{0, 0, 0, {}, true}}), "解凍 → /x（1200 個中 3 個）", {false}},
      {extracts({{1, 0, 0, {"/x/a"}, false}}),
       "解凍 → /x（1200 個中 3 個、1 個を上書き、ほかに上書きがあるかは未確認）[/x/a]",
       {false}},
      {extracts({{0, 1, 2, {"/x/a\n", "/x/b"}, true}}),
       "解凍 → /x（1200 個中 3 個、1 個は上書きするか不明、2 個は上書きするか確認）[/x/a\\n][/x/b][ほか 1 "
       "件]",
       {false}},
      {extracts(std::nullopt), "解凍 → /x（1200 個中 3 個、上書きの有無は不明）", {false}},
      {extracts(std::nullopt, true),
       "解凍 → /x（パスワードを確認してから解凍、上書きの有無は不明）",
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
      for (const std::string& name : line.replaced) text.append("[" + name + "]");
      fails.push_back(line.fails);
    }
    EXPECT_EQ(text, row.text);
    EXPECT_EQ(fails, row.fails);
  }
}

}  // namespace
}  // namespace quendle
