#include "core/failure_text.h"

#include "base/display.h"

namespace quendle {
namespace {

GTEST_TEST(FailureText, NamesTheStepsThatWereNotDone) {
  const ActionStep copied{StepKind::kCopy, "/c/a", StepResult::kDone, {}};
  const ActionStep refused{StepKind::kMove, "", StepResult::kFailed, why::kNoDestination};
  ActionStep declined{StepKind::kMove, "/m/a", StepResult::kFailed, why::kFileExistsAlready};
  declined.by_user = true;
  const ActionStep elsewhere{StepKind::kMove, "/m/a\nb", StepResult::kFailed,
                             why::kAbout(why::kAccessDenied("Permission denied"), "/m\n")};
  ActionStep broken{StepKind::kExtract, "/x", StepResult::kFailed, Reason("unused")};
  broken.extraction.emplace();
  for (const char* name : {"a\n", "b", "", "d", "e", "f", "g"}) {
    broken.extraction->problems.push_back({name, why::kUnreadable});
  }
  const std::string line_break = ForDisplay("\n");
  const std::string in = "/in" + line_break;
  const std::pair<std::vector<ActionStep>, std::string> rows[] = {
      {{copied, declined}, ""},
      {{copied, refused}, in + "\r\n移動できませんでした\r\nフォルダが指定されていません"},
      {{copied, elsewhere},
       in + "\r\n移動できませんでした: /m/a" + line_break + "b\r\nアクセス権がありません: /m" + line_break},
      {{broken, declined},
       in + "\r\n解凍できませんでした: /x\r\na" + line_break +
           ": 読み込めません\r\nb: 読み込めません\r\n読み込めません\r\n"
           "d: 読み込めません\r\ne: 読み込めません\r\nほか 2 件"},
  };
  for (const auto& [steps, text] : rows) EXPECT_EQ(FailureText("/in\n", steps), text);
}

}  // namespace
}  // namespace quendle
