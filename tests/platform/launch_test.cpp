#include "platform/launch.h"

#include "platform/launch_words.h"
#include "support/recorder.h"
#include "support/scoped_variable.h"

namespace quendle::platform {
namespace {

namespace fs = std::filesystem;

using Words = std::vector<std::string>;

GTEST_TEST(LaunchWords, AreTakenApartButNotTheValue) {
  const struct {
    const char* parameters;
    const char* value;
    Words expected;
  } rows[] = {
      {"", "/f", {}},
      {" \t ", "/f", {}},
      {"--select %1", "/a b", {"--select", "/a b"}},
      {"  \"%1\"\t-x ", "/a b", {"/a b", "-x"}},
      {"/e,%1", "/out", {"/e,/out"}},
      {"%1%1", "/f", {"/f/f"}},
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

  const Result failed = StartProgramFor(folder / "none", "%1", "x");
  EXPECT_EQ(failed.code, Code::kNotFound);
  EXPECT_EQ(failed.path, folder / "none");
  const Result denied = StartProgram({folder.path()});
  EXPECT_EQ(denied.code, Code::kDenied);
  EXPECT_EQ(denied.path, folder.path());
}

GTEST_TEST(Launch, StartsTheOpenerWithTheFileAsOneArgument) {
  const test::TempFolder folder;
  test::Recorder opener(folder / "bin/xdg-open");
  const std::string file = folder / "a b; $(touch x).txt";
  test::WriteFile(file, "x");
  const test::ScopedVariable path("PATH", folder / "bin" + ":/bin:/usr/bin");

  fs::create_directory_symlink(folder.path(), folder / "link");
  for (const std::string& untrusted : {folder.path(), folder / "bin", folder / "link"}) {
    EXPECT_FALSE(OpenWithDesktop(file, untrusted).ok()) << "an opener in the untrusted folder";
  }
  EXPECT_FALSE(OpenWithDesktop(folder / "none", "/nowhere").ok());
  ASSERT_TRUE(OpenWithDesktop(file, "/nowhere").ok());
  EXPECT_EQ(opener.Take(), "1\n" + file + "\n");
}

}  // namespace
}  // namespace quendle::platform
