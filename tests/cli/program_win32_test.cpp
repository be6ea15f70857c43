// How only Windows lets its users name files.
#include "support/program.h"

namespace quendle {
namespace {

GTEST_TEST(Program, WaysToNameAPath) {
  test::TempFolder folder;
  test::WriteSettings(folder, "[All]\r\nPattern=.*\r\nID=1\r\nAction=2\r\n");
  const std::string drive = folder.path().substr(0, 2);
  const std::pair<std::string, const char*> rows[] = {
      {drive + "表.txt", "表.txt"},
      {drive + "./in/../a.txt", "a.txt"},
      {"\"\\\\?\\" + folder / "b c.txt" + "\"", "b c.txt"},
      {"--settings \"s\\\" \"folder 表\\\"", "folder 表/a.txt"},
      {"--settings=\"s\\\\\" \"folder 表\\\\\"", "folder 表/a.txt"},
  };
  for (const auto& [arguments, moved] : rows) {
    SCOPED_TRACE(arguments);
    fs::remove_all(test::FsPath(folder / "m"));
    test::WriteFile(folder / moved, "x");
    const test::Ended ended = test::RunProgram(folder, "--batch " + arguments);
    EXPECT_EQ(ended.status, 0) << ended.err;
    EXPECT_EQ(test::ReadFile(folder / "m" + "\\" + test::Native(moved)), "x") << ended.out;
  }
}

}  // namespace
}  // namespace quendle
