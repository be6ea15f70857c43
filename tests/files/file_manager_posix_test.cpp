#include "files/file_manager.h"

#include "support/recorder.h"
#include "support/scoped_variable.h"
#include "support/settings.h"

namespace quendle {
namespace {

GTEST_TEST(FileManager, ElseTheDesktops) {
  const test::TempFolder folder;
  test::Recorder filer(folder / "bin/fm");
  test::Recorder desktop(folder / "bin/xdg-open");
  test::WriteFile(folder / "bin/plain", "#!/bin/sh\n");
  const test::ScopedVariable path("PATH", folder / "bin" + ":/bin:/usr/bin");
  const std::string out = folder / "o \"u\" $t";
  fs::create_directory(out);
  const struct {
    std::string filer, parameters;
  } rows[] = {
      {"", "/e,%1"},        {"none", ""},   {folder / "none", ""}, {"plain", ""}, {folder / "bin/plain", ""},
      {folder / "bin", ""}, {"bin/fm", ""}, {"./fm", ""},
  };
  const fs::path before = fs::current_path();
  fs::current_path(folder.path());  // where "bin/fm" would be found
  for (const auto& row : rows) {
    SCOPED_TRACE(row.filer + " " + row.parameters);
    test::Settings settings("", "[General]\n");
    settings.standard.FILER(row.filer);
    settings.standard.FILERPARM(row.parameters);
    EXPECT_TRUE(OpenFolderWithFiler(FileManagerOf(settings.standard.Values()), out + "/").ok());
    EXPECT_EQ(desktop.Take(), "1\n" + out + "\n");
  }
  fs::current_path(before);
  EXPECT_EQ(filer.Take(std::chrono::milliseconds(50)), "not started");
}

GTEST_TEST(FileManager, FailuresOfTheDesktopsAreTold) {
  const test::TempFolder folder;
  const test::ScopedVariable path("PATH", folder.path());
  const test::Settings settings("", "[General]\nFILER=none\n");
  const platform::Result failed =
      OpenFolderWithFiler(FileManagerOf(settings.standard.Values()), folder.path());
  EXPECT_EQ(failed.code, platform::Code::kNotFound);
  EXPECT_EQ(failed.path, folder.path());
}

}  // namespace
}  // namespace quendle
