#include "platform/services/running_copy.h"

#include "support/scoped_variable.h"
#include "support/temp_folder.h"

namespace quendle::platform {
namespace {

// Null for a copy that is not the first.
std::unique_ptr<RunningCopy> Claimed(const std::string& key, const std::vector<std::string>& paths = {}) {
  std::unique_ptr<RunningCopy> copy;
  const Result result = RunningCopy::Claim(key, paths, &copy);
  EXPECT_TRUE(result.ok()) << result.path << ": " << result.reason;
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
