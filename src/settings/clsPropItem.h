// The user's profiles: one section each in items.ini, named by the profile's title.
//
// Every property reads from or writes to the profile's section at once. For its behaviour (action, rename mode, extraction
// mode, smart make dir, open folder) a profile has values of its own or, while its ID flag is off, those of the standard
// settings; empty folders always fall back to the standard settings.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "resources/string_table.h"
#include "settings/clsIniFile.h"
#include "settings/clsPropDefault.h"
#include "settings/setting_values.h"

namespace quendle {

class clsPropItem {
 public:
  // What reading falls back on, asked for at each read, since the profile store is made before the settings.
  struct Fallbacks {
    std::function<const clsPropDefault&()> standard;
    std::function<const clsPropDefault&()> test;
    std::function<std::string()> target_base_name;  // the current target's name without its extension
  };

  clsPropItem(const std::string& application_folder, Fallbacks fallbacks);

  void DelSection(const std::string& title);
  void DelSections(const std::vector<std::string>& titles);  // all of them or, after a failure, none

  // All titles in ascending order (SortStrings), which is the order of profiles everywhere, and their number.
  std::int32_t EnumSection(std::vector<std::string>* titles) const;

  // Writes the keys of one profile under another title, which the caller has made sure no profile has.
  void CopySection(const std::string& title, const std::string& new_title);

  // Renames a profile in place; the caller has made sure that no profile has the new name.
  void RenameSection(const std::string& old_title, const std::string& new_title);

  // Rewrites items.ini with its sections in sorted order and without blank or stray lines.
  void OptimizeFile();

  // What the profile counts as, each key read when it is asked for. Of no profile, and of an empty title, all keys
  // are missing.
  ProfileValues Values(const std::string& title) const;

  // Each pair reads and writes one key of a profile (settings/setting_keys.h has their meanings and defaults).
  //
  // EXTRACTTO of the pseudo-profile "（なし）", which stands for a file without a profile, is the folder
  // named like the target below the test settings' folder: test folder /t and target data.zip => "/t/data".
  std::string pattern(const std::string& title) const { return Values(title).Text(TextId::kPattern); }
  void pattern(const std::string& title, const std::string& value) { Write(title, TextId::kPattern, value); }
  std::string EXTRACTTO(const std::string& title) const;
  void EXTRACTTO(const std::string& title, const std::string& value) {
    Write(title, TextId::kExtractTo, value);
  }
  std::string MOVETO(const std::string& title) const { return Values(title).Text(TextId::kMoveTo); }
  void MOVETO(const std::string& title, const std::string& value) { Write(title, TextId::kMoveTo, value); }
  std::string COPYTO(const std::string& title) const { return Values(title).Text(TextId::kCopyTo); }
  void COPYTO(const std::string& title, const std::string& value) { Write(title, TextId::kCopyTo, value); }
  std::string INCLUDE(const std::string& title) const { return Values(title).Text(TextId::kInclude); }
  void INCLUDE(const std::string& title, const std::string& value) { Write(title, TextId::kInclude, value); }
  std::string EXCLUDE(const std::string& title) const { return Values(title).Text(TextId::kExclude); }
  void EXCLUDE(const std::string& title, const std::string& value) { Write(title, TextId::kExclude, value); }
  std::string OPENFILE(const std::string& title) const { return Values(title).Text(TextId::kOpenFile); }
  void OPENFILE(const std::string& title, const std::string& value) {
    Write(title, TextId::kOpenFile, value);
  }
  bool ID(const std::string& title) const { return Values(title).Flag(TextId::kId); }
  void ID(const std::string& title, std::int16_t value) { Write(title, TextId::kId, value); }
  std::int16_t ACTION(const std::string& title) const { return Values(title).Number(TextId::kAction); }
  void ACTION(const std::string& title, std::int16_t value) { Write(title, TextId::kAction, value); }
  std::int16_t SMARTRENAME(const std::string& title) const {
    return Values(title).Number(TextId::kSmartRename);
  }
  void SMARTRENAME(const std::string& title, std::int16_t value) {
    Write(title, TextId::kSmartRename, value);
  }
  std::int16_t EXTRACTTYPE(const std::string& title) const {
    return Values(title).Number(TextId::kExtractType);
  }
  void EXTRACTTYPE(const std::string& title, std::int16_t value) {
    Write(title, TextId::kExtractType, value);
  }
  bool SMARTMAKEDIR(const std::string& title) const { return Values(title).Flag(TextId::kSmartMakeDir); }
  void SMARTMAKEDIR(const std::string& title, std::int16_t value) {
    Write(title, TextId::kSmartMakeDir, value);
  }
  bool OPENDIR(const std::string& title) const { return Values(title).Flag(TextId::kOpenDir); }
  void OPENDIR(const std::string& title, std::int16_t value) { Write(title, TextId::kOpenDir, value); }

  const std::string& FileName() const { return ini_.pFileName; }

  // Why the last write did not succeed; no failure if it did.
  const platform::Result& LastFailure() const { return ini_.LastFailure(); }

 private:
  void Write(const std::string& title, TextId key, const std::string& value);
  void Write(const std::string& title, TextId key, std::int16_t value) {
    Write(title, key, std::to_string(value));
  }

  clsIniFile ini_;
  Fallbacks fallbacks_;
};

}  // namespace quendle
