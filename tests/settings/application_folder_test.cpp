#include "settings/application_folder.h"

#include "platform/services/known_folders.h"
#include "support/scoped_variable.h"
#include "support/temp_folder.h"

namespace quendle {
namespace {

namespace fs = std::filesystem;

GTEST_TEST(ApplicationFolder, TheFirstOfFourThatApplies) {
  const test::TempFolder home;
  const std::string portable = platform::ExecutableFolder();
  const std::string standard_file = portable + test::kSeparator + "mover.ini";
  ASSERT_FALSE(fs::exists(standard_file));
  const std::string chosen = test::Rooted("/chosen");
  const std::string below = test::TextOf(fs::current_path()) + test::kSeparator + "chosen";
  const std::string variable = test::Rooted("/variable");
  test::WriteFile(home / "config/user-dirs.dirs", "XDG_DOWNLOAD_DIR=\"" + home / "files" + "\"\n");
  const test::ScopedVariable config("XDG_CONFIG_HOME", home / "config");
  const std::string of_user = platform::SettingsRoot() + test::kSeparator + "quendle";
  const struct {
    std::string chosen;
    std::string variable;
    bool is_portable;
    std::string application;
    std::string destination;
  } rows[] = {
      {chosen + test::kSeparator, variable, true, chosen, chosen},
      {"chosen", "", false, below, below},
      {"", variable, true, variable, variable},
      {"", "", true, portable, portable},
      {"", "", false, of_user, platform::DownloadFolder()},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.application);
    const test::ScopedVariable set("QUENDLE_HOME", row.variable);
    if (row.is_portable) test::WriteFile(standard_file, "");
    const SettingsFolders folders = FindSettingsFolders(row.chosen);
    fs::remove(standard_file);
    EXPECT_EQ(folders.application, row.application);
    EXPECT_EQ(folders.default_destination, row.destination);
  }
}

}  // namespace
}  // namespace quendle
