// The settings that belong to no single profile: how the program behaves, and what every profile inherits.
//
// Nothing is cached: each read sees the file as it is, each write goes to it at once. Keys live in the
// section "General". A missing or empty key reads as the default given here, which for some keys differs from
// what a newly made file holds; both are meant.
#pragma once

#include <cstdint>
#include <string>

#include "platform/result.h"
#include "settings/clsIniFile.h"

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

  // Each pair reads and writes one key.          key                 read default  in a new mover.ini /
  // test.ini
  bool CONFIRMALWAYS() const;  // "ConfirmAlways"     "0"           "1"
  void CONFIRMALWAYS(std::int16_t value);
  bool CHECKARCHIVE() const;  // "CheckArchive"      "0"           "0"
  void CHECKARCHIVE(std::int16_t value);
  bool CONFIRMOVERWRITE() const;  // "ConfirmOverwrite"  "0"           "0"
  void CONFIRMOVERWRITE(std::int16_t value);
  bool SHOWRESULT() const;  // "ShowResult"        "0"           "1"
  void SHOWRESULT(std::int16_t value);
  bool KEYCHECK() const;  // "KeyCheck"          "0"           "0"
  void KEYCHECK(std::int16_t value);
  bool TEST() const;  // "Test"              "0"           "0"
  void TEST(std::int16_t value);
  bool AUTOCOMPDIR() const;  // "AutoCompDir"       "1"           "1"
  void AUTOCOMPDIR(std::int16_t value);
  std::string FILER() const;  // "FILER"             ""            not written
  void FILER(const std::string& value);
  std::string FILERPARM() const;  // "FILERPARM"         ""            not written
  void FILERPARM(const std::string& value);
  std::int16_t ACTION() const;  // "Action"            "1"           "1"; other than 0 to 7 reads as 1
  void ACTION(std::int16_t value);
  std::string EXTRACTTO() const;  // "ExtractTo"         default destination, in both new files
  void EXTRACTTO(const std::string& value);
  std::string MOVETO() const;  // "MoveTo"            default destination
  void MOVETO(const std::string& value);
  std::string COPYTO() const;  // "CopyTo"            default destination
  void COPYTO(const std::string& value);
  std::int16_t SMARTRENAME()
      const;  // "SmartRename"       "3"           "3" / "3"; other than 1, 2 reads as 3
  void SMARTRENAME(std::int16_t value);
  std::int16_t EXTRACTTYPE() const;  // "ExtractType"       "1"           "1" / "1"; other than 2 reads as 1
  void EXTRACTTYPE(std::int16_t value);
  bool SMARTMAKEDIR() const;  // "SmartMakeDir"      "0"           "0" / "0"
  void SMARTMAKEDIR(std::int16_t value);
  bool OPENDIR() const;  // "OpenDir"           "0"           "1" / "1"
  void OPENDIR(std::int16_t value);

  const platform::Result& CreationFailure() const { return creation_failure_; }
  const std::string& FileName() const { return ini_.pFileName; }

 private:
  void CreateDefaultFiles();
  void CreateFile(const std::string& body);
  std::string Read(int key, const std::string& fallback) const;
  bool ReadFlag(int key, const char* fallback) const;
  double ReadNumber(int key, const char* fallback) const;
  void Write(int key, const std::string& value);
  void WriteNumber(int key, std::int16_t value);

  SettingsFolders folders_;
  clsIniFile ini_;
  platform::Result creation_failure_;
};

}  // namespace quendle
