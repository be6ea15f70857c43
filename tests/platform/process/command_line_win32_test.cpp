#include "platform/process/command_line_win32.h"

#include "platform/text/wide_win32.h"

// It needs the system's header before it.
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
    const char* parameters;
    const char* value;
    const char* filled;
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

}  // namespace
}  // namespace quendle::platform
