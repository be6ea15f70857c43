#include "settings/application_folder.h"

#include "platform/known_folders.h"
#include "support/scoped_variable.h"
#include "support/temp_folder.h"

namespace quendle {
namespace {

namespace fs = std::filesystem;

GTEST_TEST(ApplicationFolder, TheFirstOfFourThatApplies) {
  const test::TempFolder home;
  const std::string portable = platform::ExecutableFolder();
  ASSERT_FALSE(fs::exists(portable + "/mover.ini"));
  const struct {
    const char* chosen;
    const char* variable;
    bool is_portable;
    std::string application;
    std::string destination;
  } rows[] = {
      {"/chosen/", "/variable", true, "/chosen", "/chosen"},
      {"chosen", "", false, fs::current_path().string() + "/chosen", fs::current_path().string() + "/chosen"},
      {"", "/variable", true, "/variable", "/variable"},
      {"", "", true, portable, portable},
      {"", "", false, home / "config/quendle", home / "files"},
  };
  test::WriteFile(home / "config/user-dirs.dirs", "XDG_DOWNLOAD_DIR=\"" + home / "files" + "\"\n");
  const test::ScopedVariable config("XDG_CONFIG_HOME", home / "config");
  for (const auto& row : rows) {
    SCOPED_TRACE(row.application);
    const test::ScopedVariable variable("QUENDLE_HOME", row.variable);
    if (row.is_portable) test::WriteFile(portable + "/mover.ini", "");
    const SettingsFolders folders = FindSettingsFolders(row.chosen);
    fs::remove(portable + "/mover.ini");
    EXPECT_EQ(folders.application, row.application);
    EXPECT_EQ(folders.default_destination, row.destination);
  }
}

}  // namespace
}  // namespace quendle
