#include "platform/process/command_line_win32.h"
#include "platform/process/system_failure.h"
#include "platform/text/wide_win32.h"
#include "reasons/result.h"

// They need the system's header before them.
#include <shellapi.h>

namespace quendle::platform {
namespace {

using Words = std::vector<std::string>;

// As the system itself takes a command line apart, behind the name of a program.
Words SystemsWords(const std::string& parameters) {
  int count = 0;
  wchar_t** found = CommandLineToArgvW(WideFromText("x " + parameters).c_str(), &count);
  Words words;
  for (int i = 1; i < count; ++i) words.push_back(TextFromWide(found[i]));
  LocalFree(found);
  return words;
}

GTEST_TEST(CommandLine, FilledParametersGiveTheValueAsOneWord) {
  const struct {
    const char *parameters, *value, *filled;
    Words words;
  } rows[] = {
      {"", "C:\\a", "", {}},
      {"%1", "C:\\a", "C:\\a", {"C:\\a"}},
      {"\"%1\"", "C:\\a b", "\"C:\\a b\"", {"C:\\a b"}},
      {"/e,%1", "D:\\out", "/e,D:\\out", {"/e,D:\\out"}},
      {"/select,%1 x", "C:\\a b", "/select,\"C:\\a b\" x", {"/select,C:\\a b", "x"}},
      {"\"%1\" -x", "C:\\a b\\", "\"C:\\a b\\\\\" -x", {"C:\\a b\\", "-x"}},
      {"\"%1 y\" %1", "C:\\", "\"C:\\ y\" C:\\", {"C:\\ y", "C:\\"}},
      {"%1", "", "\"\"", {""}},
      {"\\\"%1 \"%1\"", "a b", "\\\"\"a b\" \"a b\"", {"\"a b", "a b"}},
      {"\\\\server\\%1", "a", "\\\\server\\a", {"\\\\server\\a"}},
      {"-n %1 %2 %%1", "a\" b", "-n \"a\\\" b\" %2 %\"a\\\" b\"", {"-n", "a\" b", "%2", "%a\" b"}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.parameters);
    EXPECT_EQ(FilledParameters(row.parameters, row.value), row.filled);
    EXPECT_EQ(SystemsWords(row.filled), row.words);
  }
}

GTEST_TEST(CommandLine, QuotedWordsComeBackTheSame) {
  for (const char* word :
       {"a", "", " ", "a b", "a\tb", "\"", "a\"b", "\\", "a b\\", "a\\\\\"", "\\\"\\ \\", "表 示\\"}) {
    EXPECT_EQ(SystemsWords(QuotedWord(word) + " " + QuotedWord(word)), (Words{word, word}))
        << QuotedWord(word);
  }
}

GTEST_TEST(CommandLine, NamesOfFilesKeepTheirBackslashes) {
  const struct {
    const char* command_line;
    Words words;
  } rows[] = {
      {"", {}},
      {" q.exe \t a ", {"q.exe", "a"}},
      {"\"C:\\p q\\q.exe\" \"C:\\a b\\\" x", {"C:\\p q\\q.exe", "C:\\a b\\", "x"}},
      {"q \\\\s\\d\\ \"\" a\"b c\"d", {"q", "\\\\s\\d\\", "", "ab cd"}},
      {"q \"a b", {"q", "a b"}},
      {"q \"C:\\a b\\\\\" \"\\\\s\\d\\\" x\\\\", {"q", "C:\\a b\\", "\\\\s\\d\\", "x\\\\"}},
  };
  for (const auto& row : rows) EXPECT_EQ(CommandLineWords(row.command_line), row.words) << row.command_line;
}

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
