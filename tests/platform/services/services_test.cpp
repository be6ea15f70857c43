#include "platform/services/launch.h"
#include "platform/services/launch_words.h"
#include "platform/services/running_copy.h"
#include "support/outcome.h"
#include "support/recorder.h"
#include "support/scoped_variable.h"

namespace quendle::platform {
namespace {

using Words = std::vector<std::string>;

GTEST_TEST(LaunchWords, AreTakenApartButNotTheValue) {
  const struct {
    const char *parameters, *value;
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
  ASSERT_TRUE(test::Succeeds(StartProgramFor(program, "--show \"\" %1", "/it's \"here\" $HOME")));
  EXPECT_EQ(recorder.Take(), "3\n--show\n\n/it's \"here\" $HOME\n");
  ASSERT_TRUE(test::Succeeds(StartProgram({program, "", "a\\\"b\\", "c d\\", "%1 表"})));
  EXPECT_EQ(recorder.Take(), "4\n\na\\\"b\\\nc d\\\n%1 表\n");

  EXPECT_TRUE(test::Fails(StartProgramFor(folder / "none", "%1", "x"), Code::kNotFound, folder / "none"));
  const Result folder_given = StartProgram({folder.path()});
  EXPECT_FALSE(folder_given.ok());
  EXPECT_EQ(folder_given.path, folder.path());
}

// Null for a copy that is not the first.
std::unique_ptr<RunningCopy> Claimed(const std::string& key, const std::vector<std::string>& paths = {}) {
  std::unique_ptr<RunningCopy> copy;
  EXPECT_TRUE(test::Succeeds(RunningCopy::Claim(key, paths, &copy)));
  return copy;
}

GTEST_TEST(RunningCopy, OneOfEachKey) {
  const test::TempFolder folder;
  const test::ScopedVariable variable("XDG_RUNTIME_DIR", folder.path());
  const std::string key = folder.path() + " 表";
  auto first = Claimed(key);
  ASSERT_NE(first, nullptr);
  EXPECT_NE(first->WaitHandle(), -1);
  EXPECT_FALSE(first->TakeRequest());
  EXPECT_NE(Claimed(key + "s"), nullptr);
  EXPECT_FALSE(first->TakeRequest()) << "it was another one's";

  // A copy that is busy for long keeps nobody waiting, however often it is asked.
  for (int i = 0; i < 200; ++i) ASSERT_EQ(Claimed(key), nullptr) << i;
  EXPECT_TRUE(first->TakeRequest());
  EXPECT_FALSE(first->TakeRequest());

  first.reset();
  EXPECT_NE(Claimed(key), nullptr);
}

GTEST_TEST(RunningCopy, TheFirstOneIsToldWhatOthersLeave) {
  const test::TempFolder folder;
  const test::ScopedVariable variable("XDG_RUNTIME_DIR", folder.path());
  const auto first = Claimed(folder.path(), {"its own"});
  ASSERT_NE(first, nullptr);
  const std::string huge(70'000, 'h');
  const struct {
    const char* name;
    std::vector<std::vector<std::string>> starts;
    std::vector<std::string> names;
    std::size_t count;
  } rows[] = {
      {"nobody", {}, {}, 0},
      {"no paths", {{}}, {}, 0},
      {"bytes as they are", {{"/in/\xFF 表", "a\nb"}}, {"/in/\xFF 表", "a\nb"}, 2},
      {"several copies", {{"a"}, {}, {"b", "c"}}, {"a", "b", "c"}, 3},
      {"too long, and without a name", {{huge, "a", ""}}, {"a"}, 3},
      {"many", {std::vector<std::string>(30, "a"), {"b"}}, std::vector<std::string>(20, "a"), 31},
      {"more than there is room for",
       {{std::string(40'000, 'a'), std::string(40'000, 'b')}},
       {std::string(40'000, 'a')},
       2},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    for (const auto& paths : row.starts) ASSERT_EQ(Claimed(folder.path(), paths), nullptr);
    EXPECT_EQ(first->TakeRequest(), !row.starts.empty());
    const LeftPaths left = first->TakeLeftPaths();
    EXPECT_EQ(left.names, row.names);
    EXPECT_EQ(left.count, row.count);
    EXPECT_EQ(first->TakeLeftPaths().count, 0U) << "once";
  }
}

}  // namespace
}  // namespace quendle::platform
