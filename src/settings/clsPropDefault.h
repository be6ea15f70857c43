// The settings that belong to no single profile: how the program behaves, and what every profile inherits.
//
// Nothing is cached: each read sees the file as it is, each write goes to it at once. Keys live in the
// section "General". A missing or empty key reads as the default given here, which for some keys differs from
// what a newly made file holds; both are meant.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

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

  // Each pair of overloads below reads and writes one key. The columns are the key, what a missing or empty
  // key reads as, and what a newly made mover.ini and test.ini hold ("-": nothing).
  //
  //   CONFIRMALWAYS     ConfirmAlways     0  1  -    always show the confirmation window
  //   CHECKARCHIVE      CheckArchive      0  0  -    look for archives by content, not by extension only
  //   CONFIRMOVERWRITE  ConfirmOverwrite  0  0  -    ask before overwriting while extracting
  //   SHOWRESULT        ShowResult        0  1  -    show the extraction log
  //   KEYCHECK          KeyCheck          0  0  -    the Ctrl key at start asks for confirmation
  //   TEST              Test              0  0  -    extract archives without a profile by test.ini
  //   AUTOCOMPDIR       AutoCompDir       1  1  -    append the profile's name to a folder that is picked
  //   FILER             FILER             "" -  -    file manager
  //   FILERPARM         FILERPARM         "" -  -    its parameters, "%1" for the folder
  //   ARCHIVECHARSET    ArchiveCharset    "" -  -    encoding of entry names that do not say theirs ("CP932")
  //   ACTION            Action            1  1  -    bits: 1 extract, 2 move, 4 copy; not 0 to 7 reads as 1
  //   EXTRACTTO         ExtractTo         d  d  d    d: the default destination
  //   MOVETO            MoveTo            d  d  -
  //   COPYTO            CopyTo            d  d  -
  //   SMARTRENAME       SmartRename       3  3  3    1 never, 2 always, 3 on a collision; else reads as 3
  //   EXTRACTTYPE       ExtractType       1  1  1    1 overwrite, 2 update; else reads as 1
  //   SMARTMAKEDIR      SmartMakeDir      0  0  0    no extra folder for a single root folder
  //   OPENDIR           OpenDir           0  1  1    open the extraction folder
  bool CONFIRMALWAYS() const;
  void CONFIRMALWAYS(std::int16_t value);
  bool CHECKARCHIVE() const;
  void CHECKARCHIVE(std::int16_t value);
  bool CONFIRMOVERWRITE() const;
  void CONFIRMOVERWRITE(std::int16_t value);
  bool SHOWRESULT() const;
  void SHOWRESULT(std::int16_t value);
  bool KEYCHECK() const;
  void KEYCHECK(std::int16_t value);
  bool TEST() const;
  void TEST(std::int16_t value);
  bool AUTOCOMPDIR() const;
  void AUTOCOMPDIR(std::int16_t value);
  std::string FILER() const;
  void FILER(const std::string& value);
  std::string FILERPARM() const;
  void FILERPARM(const std::string& value);
  std::string ARCHIVECHARSET() const;
  void ARCHIVECHARSET(const std::string& value);
  std::int16_t ACTION() const;
  void ACTION(std::int16_t value);
  std::string EXTRACTTO() const;
  void EXTRACTTO(const std::string& value);
  std::string MOVETO() const;
  void MOVETO(const std::string& value);
  std::string COPYTO() const;
  void COPYTO(const std::string& value);
  std::int16_t SMARTRENAME() const;
  void SMARTRENAME(std::int16_t value);
  std::int16_t EXTRACTTYPE() const;
  void EXTRACTTYPE(std::int16_t value);
  bool SMARTMAKEDIR() const;
  void SMARTMAKEDIR(std::int16_t value);
  bool OPENDIR() const;
  void OPENDIR(std::int16_t value);

  // Why the initial files could not be made; ok() when they were, or were there.
  const platform::Result& CreationFailure() const { return creation_failure_; }
  const std::string& FileName() const { return ini_.pFileName; }
  // What a folder reads as that nobody has set.
  const std::string& DefaultDestination() const { return folders_.default_destination; }

 private:
  void CreateDefaultFiles();
  void CreateFile(const std::vector<std::pair<int, std::string>>& values);
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
