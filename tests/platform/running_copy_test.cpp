#include "platform/running_copy.h"

#include "support/scoped_variable.h"
#include "support/temp_folder.h"

namespace quendle::platform {
namespace {

// Null for a copy that is not the first.
std::unique_ptr<RunningCopy> Claimed(const std::string& key) {
  std::unique_ptr<RunningCopy> copy;
  const Result result = RunningCopy::Claim(key, &copy);
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
  for (int i = 0; i < 100; ++i) ASSERT_EQ(Claimed(key), nullptr) << i;
  EXPECT_TRUE(first->TakeRequest());
  EXPECT_FALSE(first->TakeRequest());

  first.reset();
  EXPECT_NE(Claimed(key), nullptr);
}

}  // namespace
}  // namespace quendle::platform
