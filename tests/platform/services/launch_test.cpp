#include "platform/services/launch.h"

#include "platform/services/launch_words.h"
#include "support/recorder.h"

namespace quendle::platform {
namespace {

using Words = std::vector<std::string>;

GTEST_TEST(LaunchWords, AreTakenApartButNotTheValue) {
  const struct {
    const char* parameters;
    const char* value;
    Words expected;
  } rows[] = {
      {" \t ", "/f", {}},
      {"--select %1", "/a b", {"--select", "/a b"}},
      {"  \"%1\"\t-x ", "/a b", {"/a b", "-x"}},
      {"/e,%1", "/out", {"/e,/out"}},
      {"%1", "\"a\" \\\" %1 $(x)\n'", {"\"a\" \\\" %1 $(x)\n'"}},
      {"\"%1 %1", "x\"y", {"x\"y x\"y"}},
      {"a\"b c\"d \"\" e", "/f", {"ab cd", "", "e"}},
      {"\\\"a b\\\" \\\\%1 c:\\d \\", "/f", {"\"a", "b\"", "\\/f", "c:\\d", "\\"}},
      {"\"a\\\" b\" 'c d'", "/f", {"a\" b", "'c", "d'"}},
      {"%2 % %%1 %\"1\"", "/f", {"%2", "%", "%/f", "%1"}},
      {"表　示 ソ\\\\", "/f", {"表　示", "ソ\\"}},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(LaunchWords(row.parameters, row.value), row.expected) << row.parameters;
  }
}

GTEST_TEST(Launch, StartsAProgramWithItsWords) {
  const test::TempFolder folder;
  const std::string program = folder / "a program";
  test::Recorder recorder(program);
  ASSERT_TRUE(StartProgramFor(program, "--show \"\" %1", "/it's \"here\" $HOME").ok());
  EXPECT_EQ(recorder.Take(), "3\n--show\n\n/it's \"here\" $HOME\n");
  ASSERT_TRUE(StartProgram({program, "", "a\\\"b\\", "c d\\", "%1 表"}).ok());
  EXPECT_EQ(recorder.Take(), "4\n\na\\\"b\\\nc d\\\n%1 表\n");

  const Result failed = StartProgramFor(folder / "none", "%1", "x");
  EXPECT_EQ(failed.code, Code::kNotFound);
  EXPECT_EQ(failed.path, folder / "none");
  const Result folder_given = StartProgram({folder.path()});
  EXPECT_FALSE(folder_given.ok());
  EXPECT_EQ(folder_given.path, folder.path());
}

}  // namespace
}  // namespace quendle::platform
