// The settings that belong to no single profile: how the program behaves, and what every profile inherits.
//
// Nothing is cached: each read sees the file as it is, each write goes to it at once. Keys live in the
// section "General". A missing or empty key reads as the default given here, which for some keys differs from
// what a newly made file holds; both are meant.
#pragma once

#include <cstdint>
#include <string>

#include "reasons/result.h"
#include "resources/string_table.h"
#include "settings/clsIniFile.h"
#include "settings/setting_values.h"

namespace quendle {

// Where the settings files are and which folder stands in for a destination that nobody has set.
struct SettingsFolders {
  std::string application;
  std::string default_destination;
};

class clsPropDefault {
 public:
  static constexpr std::int16_t kStandard = 0;  // mover.ini
  static constexpr std::int16_t kTestMode = 6;  // test.ini

  // Opens mode 0. With `create_files`, files that do not exist are made with their initial values first; when
  // they cannot be, every read gives its default and CreationFailure says why.
  clsPropDefault(const SettingsFolders& folders, bool create_files);

  // Points the object at the file of a mode. Any mode but 0 and 6 is a programming error.
  void SetMode(std::int16_t mode);

  // All keys, read when one is asked for.
  SettingsValues Values() const;

  // Each pair of overloads reads and writes one key (settings/setting_keys.h has their meanings and defaults).
  bool CONFIRMALWAYS() const { return Values().Flag(TextId::kConfirmAlways); }
  void CONFIRMALWAYS(std::int16_t value) { Write(TextId::kConfirmAlways, value); }
  bool CHECKARCHIVE() const { return Values().Flag(TextId::kCheckArchive); }
  void CHECKARCHIVE(std::int16_t value) { Write(TextId::kCheckArchive, value); }
  bool CONFIRMOVERWRITE() const { return Values().Flag(TextId::kConfirmOverwrite); }
  void CONFIRMOVERWRITE(std::int16_t value) { Write(TextId::kConfirmOverwrite, value); }
  bool SHOWRESULT() const { return Values().Flag(TextId::kShowResult); }
  void SHOWRESULT(std::int16_t value) { Write(TextId::kShowResult, value); }
  bool KEYCHECK() const { return Values().Flag(TextId::kKeyCheck); }
  void KEYCHECK(std::int16_t value) { Write(TextId::kKeyCheck, value); }
  bool TEST() const { return Values().Flag(TextId::kTest); }
  void TEST(std::int16_t value) { Write(TextId::kTest, value); }
  bool AUTOCOMPDIR() const { return Values().Flag(TextId::kAutoCompDir); }
  void AUTOCOMPDIR(std::int16_t value) { Write(TextId::kAutoCompDir, value); }
  std::string FILER() const { return Values().Text(TextId::kFiler); }
  void FILER(const std::string& value) { Write(TextId::kFiler, value); }
  std::string FILERPARM() const { return Values().Text(TextId::kFilerParm); }
  void FILERPARM(const std::string& value) { Write(TextId::kFilerParm, value); }
  std::int16_t ACTION() const { return Values().Number(TextId::kAction); }
  void ACTION(std::int16_t value) { Write(TextId::kAction, value); }
  std::string EXTRACTTO() const { return Values().Text(TextId::kExtractTo); }
  void EXTRACTTO(const std::string& value) { Write(TextId::kExtractTo, value); }
  std::string MOVETO() const { return Values().Text(TextId::kMoveTo); }
  void MOVETO(const std::string& value) { Write(TextId::kMoveTo, value); }
  std::string COPYTO() const { return Values().Text(TextId::kCopyTo); }
  void COPYTO(const std::string& value) { Write(TextId::kCopyTo, value); }
  std::int16_t SMARTRENAME() const { return Values().Number(TextId::kSmartRename); }
  void SMARTRENAME(std::int16_t value) { Write(TextId::kSmartRename, value); }
  std::int16_t EXTRACTTYPE() const { return Values().Number(TextId::kExtractType); }
  void EXTRACTTYPE(std::int16_t value) { Write(TextId::kExtractType, value); }
  bool SMARTMAKEDIR() const { return Values().Flag(TextId::kSmartMakeDir); }
  void SMARTMAKEDIR(std::int16_t value) { Write(TextId::kSmartMakeDir, value); }
  bool OPENDIR() const { return Values().Flag(TextId::kOpenDir); }
  void OPENDIR(std::int16_t value) { Write(TextId::kOpenDir, value); }

  // Why the initial files could not be made; ok() when they were, or were there.
  const platform::Result& CreationFailure() const { return creation_failure_; }
  const std::string& FileName() const { return ini_.pFileName; }
  const SettingsFolders& Folders() const { return folders_; }
  // What a folder reads as that nobody has set.
  const std::string& DefaultDestination() const { return folders_.default_destination; }

 private:
  void CreateDefaultFiles();
  void CreateFile(SettingsFile file);
  void Write(TextId key, const std::string& value);
  void Write(TextId key, std::int16_t value) { Write(key, std::to_string(value)); }

  SettingsFolders folders_;
  clsIniFile ini_;
  platform::Result creation_failure_;
};

}  // namespace quendle
