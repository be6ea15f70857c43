#include <functional>

#include "base/modString.h"
#include "platform/services/known_folders.h"
#include "resources/string_table.h"
#include "settings/application_folder.h"
#include "settings/run_settings.h"
#include "support/scoped_variable.h"
#include "support/settings.h"

namespace quendle {
namespace {

using Snapshot = std::shared_ptr<const SettingsSnapshot>;

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
    std::string chosen, variable;
    bool is_portable;
    std::string application, destination;
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

struct RunSettingsTest : testing::Test {
  RunSettingsTest() {
    test::WriteFile(folder / "mover.ini", "[General]\r\nMoveTo=/m\r\n");
    test::WriteFile(folder / "test.ini", "[General]\r\n");
    test::WriteFile(folder / "items.ini", "[b]\r\nPattern=1\r\n[A]\r\nPattern=2\r\nMoveTo=/a\r\n[a]\r\n");
  }

  test::TempFolder folder;
  RunSettings settings = RunSettings({folder.path(), "/default"});
  Snapshot snapshot;
};

// What is there and cannot be read must not be taken for what is not there.
TEST_F(RunSettingsTest, OnlyWhatIsNotThereMeansDefaults) {
  const auto link = [this](const char* to) {
    return [this, to](const std::string& file) {
      fs::create_symlink(test::FsPath(folder / to), test::FsPath(file));
    };
  };
  const auto write = [](const std::string& bytes) {
    return [bytes](const std::string& file) { test::WriteFile(file, bytes); };
  };
  using namespace std::string_literals;
  const struct {
    const char* name;
    std::function<void(const std::string& file)> make;
    bool is_read;
  } rows[] = {
      {"nothing", [](const std::string&) {}, true},
      {"empty", write(""), true},
      {"a link to nothing", link("gone"), false},
      {"a link to itself", link("mover.ini"), false},
      {"a link", link("real.ini"), true},
      {"a folder", [](const std::string& file) { fs::create_directory(test::FsPath(file)); }, false},
      {"bytes of no character", write("[General]\r\nFILER=\xFF\r\n"), false},
      {"zeros", write("[General]\r\n"s + std::string(20, '\0')), false},
      {"half a character of UTF-8 behind a mark", write("\xEF\xBB\xBF[General]\r\nFILER=\xC3\r\n"), false},
  };
  test::WriteFile(folder / "real.ini", "[General]\r\n");
  for (const char* file : {"mover.ini", "test.ini", "items.ini"}) {
    const std::string kept = test::ReadFile(folder / file);
    for (const auto& row : rows) {
      const bool makes_link = std::string(row.name).starts_with("a link");
      if (makes_link && kHostStyle == PathStyle::kWindows) continue;  // not every user may make one there
      SCOPED_TRACE(std::string(file) + ": " + row.name);
      fs::remove_all(test::FsPath(folder / file));
      if (std::string(row.name) == "a link to itself") {
        fs::create_symlink(test::FsPath(folder / file), test::FsPath(folder / file));
      } else {
        row.make(folder / file);
      }
      RunSettings fresh({folder.path(), "/default"});
      const platform::Result read = fresh.Read(&snapshot);
      EXPECT_EQ(read.ok(), row.is_read) << read.reason;
      EXPECT_EQ(read.path.ends_with(file) && !read.reason.empty(), !row.is_read) << read.path;
    }
    fs::remove_all(test::FsPath(folder / file));
    test::WriteFile(folder / file, kept);
  }
}

TEST_F(RunSettingsTest, ASectionThatHasGoneIsNoneThatWasNeverThere) {
  for (const char* file : {"mover.ini", "test.ini", "items.ini"}) {
    RunSettings run({folder.path(), "/default"});
    ASSERT_TRUE(run.Read(&snapshot).ok());
    const std::string kept = test::ReadFile(folder / file);
    for (const char* now : {"", "[Other\r\n"}) {
      test::WriteFile(folder / file, now);
      EXPECT_FALSE(run.Read(&snapshot).ok()) << file;
      EXPECT_TRUE(RunSettings({folder.path(), ""}).Read(&snapshot).ok()) << file;
    }
    fs::remove(test::FsPath(folder / file));
    EXPECT_FALSE(run.Read(&snapshot).ok()) << file;
    test::WriteFile(folder / file, kept);
    EXPECT_TRUE(run.Read(&snapshot).ok()) << file;
  }
}

TEST_F(RunSettingsTest, ASnapshotStaysWhatItWas) {
  ASSERT_TRUE(settings.Read(&snapshot).ok());
  const Snapshot first = snapshot;
  EXPECT_EQ(first->Titles(), (std::vector<std::string>{"A", "b"}));
  EXPECT_EQ(first->RepeatedTitles(), std::vector<std::string>{"a"});
  ASSERT_TRUE(settings.Read(&snapshot).ok());
  EXPECT_EQ(snapshot, first) << "patterns would be compiled anew for each path";
  test::WriteFile(folder / "items.ini", "[A]\r\nPattern=3\r\nMoveTo=/b\r\n");
  test::WriteFile(folder / "mover.ini", "[General]\r\nMoveTo=/n\r\n");
  ASSERT_TRUE(settings.Read(&snapshot).ok());
  const auto text = [](const Snapshot& of, const char* title) {
    const std::optional<ProfileValues> profile = of->Profile(title);
    return profile ? profile->Text(TextId::kPattern) + profile->Text(TextId::kMoveTo) : "none";
  };
  EXPECT_EQ(text(first, "a") + " " + text(first, "B"), "2/a 1/m");
  EXPECT_EQ(text(snapshot, "a") + " " + text(snapshot, "B"), "3/b none");
}

}  // namespace
}  // namespace quendle
