#include "platform/process/system_failure.h"
#include "reasons/result.h"

#include "platform/text/wide_win32.h"

namespace quendle::platform {
namespace {

GTEST_TEST(Result, SystemFailuresAreOneLine) {
  const struct {
    DWORD error;
    Code code;
  } rows[] = {
      {ERROR_FILE_NOT_FOUND, Code::kNotFound}, {ERROR_PATH_NOT_FOUND, Code::kNotFound},
      {ERROR_ALREADY_EXISTS, Code::kExists},   {ERROR_DIR_NOT_EMPTY, Code::kExists},
      {ERROR_ACCESS_DENIED, Code::kDenied},    {ERROR_SHARING_VIOLATION, Code::kDenied},
      {ERROR_DISK_FULL, Code::kNoSpace},       {ERROR_CANCELLED, Code::kCancelled},
      {ERROR_BAD_EXE_FORMAT, Code::kFailed},   {0x7FFFFFFF, Code::kFailed},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.error);
    const Result failure = SystemFailure(static_cast<int>(row.error), "p");
    EXPECT_EQ(failure.code, row.code);
    EXPECT_EQ(failure.path, "p");
    EXPECT_FALSE(failure.reason.empty());
    EXPECT_EQ(English(failure.reason).find_first_of("\r\n%"), std::string::npos) << failure.reason;
    EXPECT_NE(English(failure.reason).back(), '.');
  }
  EXPECT_EQ(SystemFailure(ERROR_SHARING_VIOLATION, "").reason, "another program uses it");
}

}  // namespace
}  // namespace quendle::platform
