#include "files/file_manager.h"

#include "base/modString.h"
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
  std::filesystem::create_directory(test::FsPath(out));
  const struct {
    std::string filer;
    std::string parameters;
    std::string record;
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

}  // namespace
}  // namespace quendle
