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
  bool CONFIRMALWAYS() const { return Values().Flag(text_id::kConfirmAlways); }
  void CONFIRMALWAYS(std::int16_t value) { Write(text_id::kConfirmAlways, value); }
  bool CHECKARCHIVE() const { return Values().Flag(text_id::kCheckArchive); }
  void CHECKARCHIVE(std::int16_t value) { Write(text_id::kCheckArchive, value); }
  bool CONFIRMOVERWRITE() const { return Values().Flag(text_id::kConfirmOverwrite); }
  void CONFIRMOVERWRITE(std::int16_t value) { Write(text_id::kConfirmOverwrite, value); }
  bool SHOWRESULT() const { return Values().Flag(text_id::kShowResult); }
  void SHOWRESULT(std::int16_t value) { Write(text_id::kShowResult, value); }
  bool KEYCHECK() const { return Values().Flag(text_id::kKeyCheck); }
  void KEYCHECK(std::int16_t value) { Write(text_id::kKeyCheck, value); }
  bool TEST() const { return Values().Flag(text_id::kTest); }
  void TEST(std::int16_t value) { Write(text_id::kTest, value); }
  bool AUTOCOMPDIR() const { return Values().Flag(text_id::kAutoCompDir); }
  void AUTOCOMPDIR(std::int16_t value) { Write(text_id::kAutoCompDir, value); }
  std::string FILER() const { return Values().Text(text_id::kFiler); }
  void FILER(const std::string& value) { Write(text_id::kFiler, value); }
  std::string FILERPARM() const { return Values().Text(text_id::kFilerParm); }
  void FILERPARM(const std::string& value) { Write(text_id::kFilerParm, value); }
  std::int16_t ACTION() const { return Values().Number(text_id::kAction); }
  void ACTION(std::int16_t value) { Write(text_id::kAction, value); }
  std::string EXTRACTTO() const { return Values().Text(text_id::kExtractTo); }
  void EXTRACTTO(const std::string& value) { Write(text_id::kExtractTo, value); }
  std::string MOVETO() const { return Values().Text(text_id::kMoveTo); }
  void MOVETO(const std::string& value) { Write(text_id::kMoveTo, value); }
  std::string COPYTO() const { return Values().Text(text_id::kCopyTo); }
  void COPYTO(const std::string& value) { Write(text_id::kCopyTo, value); }
  std::int16_t SMARTRENAME() const { return Values().Number(text_id::kSmartRename); }
  void SMARTRENAME(std::int16_t value) { Write(text_id::kSmartRename, value); }
  std::int16_t EXTRACTTYPE() const { return Values().Number(text_id::kExtractType); }
  void EXTRACTTYPE(std::int16_t value) { Write(text_id::kExtractType, value); }
  bool SMARTMAKEDIR() const { return Values().Flag(text_id::kSmartMakeDir); }
  void SMARTMAKEDIR(std::int16_t value) { Write(text_id::kSmartMakeDir, value); }
  bool OPENDIR() const { return Values().Flag(text_id::kOpenDir); }
  void OPENDIR(std::int16_t value) { Write(text_id::kOpenDir, value); }

  // Why the initial files could not be made; ok() when they were, or were there.
  const platform::Result& CreationFailure() const { return creation_failure_; }
  const std::string& FileName() const { return ini_.pFileName; }
  const SettingsFolders& Folders() const { return folders_; }
  // What a folder reads as that nobody has set.
  const std::string& DefaultDestination() const { return folders_.default_destination; }

 private:
  void CreateDefaultFiles();
  void CreateFile(SettingsFile file);
  void Write(int key, const std::string& value);
  void Write(int key, std::int16_t value) { Write(key, std::to_string(value)); }

  SettingsFolders folders_;
  clsIniFile ini_;
  platform::Result creation_failure_;
};

}  // namespace quendle
