#include "core/untold_paths.h"

#include "base/display.h"

namespace quendle {
namespace {

GTEST_TEST(UntoldPaths, AreNamedUpToWhatAScreenHolds) {
  const std::vector<std::string> twelve(12, "/a\tb");
  std::string ten_lines;
  for (int i = 0; i < 10; ++i) ten_lines += "\r\n" + ForDisplay("/a\tb");
  const std::string missing = "次のファイルは、見つからないため、処理していません。";
  const std::string surplus = "一度に処理できるのは 10 件までです。\r\n次のファイルは処理していません。";
  const std::string left = "次のファイルは、ほかの処理の途中で渡されたため、処理していません。";
  const std::pair<UntoldPaths, std::string> rows[] = {
      {{{}, {}, {}}, ""},
      {{{"%1"}, {}, {}}, missing + "\r\n%1"},
      {{{}, twelve, {}}, surplus + ten_lines + "\r\nほか 2 件"},
      {{{"x"}, {"y"}, {{"z"}, 1}}, missing + "\r\nx\r\n\r\n" + surplus + "\r\ny\r\n\r\n" + left + "\r\nz"},
      {{{}, {}, {{}, 3}}, left + "\r\nほか 3 件"},
  };
  for (const auto& [untold, message] : rows) {
    EXPECT_EQ(MessageOf(untold), message);
    EXPECT_EQ(untold.IsEmpty(), message.empty());
  }
}

}  // namespace
}  // namespace quendle
