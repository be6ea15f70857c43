#include "files/file_manager.h"
#include "base/modString.h"
#include "files/modBrowseDir.h"
#include "support/recorder.h"
#include "support/scoped_variable.h"
#include "support/settings.h"

namespace quendle {
namespace {

GTEST_TEST(FileManager, TheConfiguredOne) {
  const test::TempFolder folder;
  const std::string program = folder / (kHostStyle == PathStyle::kWindows ? "bin/fm.exe" : "bin/fm");
  test::Recorder filer(program);
  // What records is a script on POSIX.
  const std::string path_end = kHostStyle == PathStyle::kWindows ? "" : ":/bin:/usr/bin";
  const test::ScopedVariable path("PATH", folder / "bin" + path_end);
  const std::string out = folder / "o 'u' $t";
  fs::create_directory(test::FsPath(out));
  const struct {
    std::string filer, parameters, record;
  } rows[] = {
      {"fm", "", "1\n" + out + "\n"},         {program, "", "1\n" + out + "\n"},
      {"fm", "/e,%1", "1\n/e," + out + "\n"}, {"fm", "--new \"%1\" x", "3\n--new\n" + out + "\nx\n"},
      {"fm", "--here", "1\n--here\n"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.filer + " " + row.parameters);
    test::Settings settings("", "[General]\n");
    settings.standard.FILER(row.filer);
    settings.standard.FILERPARM(row.parameters);
    EXPECT_TRUE(OpenFolderWithFiler(FileManagerOf(settings.standard.Values()), out + test::kSeparator).ok());
    EXPECT_EQ(filer.Take(), row.record);
  }
  const test::Settings settings("", "[General]\nFILER=fm\n");
  EXPECT_TRUE(OpenFolderWithFiler(FileManagerOf(settings.standard.Values()), folder / "gone").ok())
      << "there is nothing to open";
}

GTEST_TEST(ModBrowseDir, TheNearestFolderThatIsThere) {
  const test::TempFolder folder;
  test::WriteFile(folder / "a b/file", "x");
  const std::string there = folder / "a b";
  const struct {
    std::string proposed, expected;
  } rows[] = {
      {there, there + "/"},
      {there + "/", there + "/"},
      {there + "/c/d/e", there + "/"},
      {there + "//c//d", there + "/"},
      {there + "/file/x", there + "/"},
      {test::Rooted("/"), test::Rooted("/")},
      {test::Rooted("/none-of-that-name/b/c"), ""},
      {"none-of-that-name/b", ""},
      {"", ""},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(PickerStartFolder(test::Native(row.proposed)), test::Native(row.expected)) << row.proposed;
  }
}

}  // namespace
}  // namespace quendle
