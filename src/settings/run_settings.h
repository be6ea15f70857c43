// The settings and profiles as a run uses them: for each path all three files are read, each by one parse, and
// everything that is decided about the path is decided by what was read then.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/ini/profile.h"
#include "platform/ini/profile_document.h"
#include "reasons/result.h"
#include "settings/clsPropDefault.h"
#include "settings/setting_values.h"

namespace quendle {

// The three files at one moment. It never changes.
class SettingsSnapshot {
 public:
  struct Files {
    platform::ProfileParse standard;  // null: there is no such file
    platform::ProfileParse test;
    platform::ProfileParse items;

    bool operator==(const Files&) const = default;
  };
  SettingsSnapshot(Files files, const std::string& default_destination);
  SettingsSnapshot(const SettingsSnapshot&) = delete;
  SettingsSnapshot& operator=(const SettingsSnapshot&) = delete;

  const Files& files() const { return files_; }
  const SettingsValues& Standard() const { return standard_; }
  const SettingsValues& Test() const { return test_; }

  // In ascending order (SortStrings), each title once: of several sections only the first is ever read.
  const std::vector<std::string>& Titles() const { return titles_; }
  // Those that stand more than once, as they come up again.
  const std::vector<std::string>& RepeatedTitles() const { return repeated_titles_; }

  // Of a title, whatever its case; nothing when there is no such profile. Valid while the snapshot lives.
  std::optional<ProfileValues> Profile(const std::string& title) const;

 private:
  Files files_;
  SettingsValues standard_;
  SettingsValues test_;
  std::vector<std::string> titles_;
  std::vector<std::string> repeated_titles_;
  std::unordered_map<std::string, platform::ProfileKeys> profiles_;  // by upper-cased title
};

class RunSettings {
 public:
  explicit RunSettings(const SettingsFolders& folders);

  // The settings as they are now: the same object as before while no file has another content. A missing file means
  // defaults. A failure, with the file's path, when one is there and cannot be read whole (ReadProfile), has bytes that
  // are no characters, or when it had the section "General", or any profile, at an earlier reading and has none any more:
  // whoever removes them is about to write them anew.
  platform::Result Read(std::shared_ptr<const SettingsSnapshot>* snapshot);

 private:
  struct File {
    std::string path;
    std::string section;  // that makes sense of it; empty: any
    bool had_section = false;
    platform::ProfileParse parse;  // the last one that was taken
  };
  static platform::Result ReadText(const std::string& file, platform::ProfileParse* parse);
  static platform::Result ReadFile(File* file, platform::ProfileParse* parse);

  File standard_;
  File test_;
  File items_;
  std::string default_destination_;
  std::shared_ptr<const SettingsSnapshot> last_;
};

}  // namespace quendle
