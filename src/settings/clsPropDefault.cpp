#include "settings/clsPropDefault.h"

#include <limits>

#include "base/modString.h"
#include "base/modSystem.h"
#include "base/text.h"
#include "platform/profile.h"
#include "resources/string_table.h"

namespace quendle {
clsPropDefault::clsPropDefault(const SettingsFolders& folders, bool create_files) : folders_(folders) {
  if (create_files) CreateDefaultFiles();
  SetMode(kStandard);
}

void clsPropDefault::SetMode(std::int16_t mode) {
  if (mode != kStandard && mode != kTestMode) ProgrammingError("settings mode other than 0 or 6");
  ini_.pFileName = AddBackslash(folders_.application) +
                   LoadText(mode == kStandard ? text_id::kStandardFile : text_id::kTestFile);
}

void clsPropDefault::CreateDefaultFiles() {
  const std::string& destination = folders_.default_destination;
  SetMode(kStandard);
  CreateFile({{text_id::kExtractTo, destination},
              {text_id::kCopyTo, destination},
              {text_id::kMoveTo, destination},
              {text_id::kAction, "1"},
              {text_id::kAutoCompDir, "1"},
              {text_id::kCheckArchive, "0"},
              {text_id::kConfirmAlways, "1"},
              {text_id::kConfirmOverwrite, "0"},
              {text_id::kExtractType, "1"},
              {text_id::kSmartRename, "3"},
              {text_id::kSmartMakeDir, "0"},
              {text_id::kOpenDir, "1"},
              {text_id::kShowResult, "1"},
              {text_id::kKeyCheck, "0"},
              {text_id::kTest, "0"}});
  SetMode(kTestMode);
  CreateFile({{text_id::kExtractTo, destination},
              {text_id::kExtractType, "1"},
              {text_id::kSmartRename, "3"},
              {text_id::kOpenDir, "1"},
              {text_id::kSmartMakeDir, "0"}});
}

// All keys go in at once: fifteen single writes would be fifteen synced files on the first start. The look at
// the file here only spares every later start the lock.
void clsPropDefault::CreateFile(const std::vector<std::pair<int, std::string>>& values) {
  if (FileExists(ini_.pFileName) || !creation_failure_.ok()) return;
  if (!MakeDirNested(folders_.application, &creation_failure_)) return;
  platform::KeysAndValues keys;
  for (const auto& [key, value] : values) keys.emplace_back(LoadText(key), value);
  creation_failure_ = platform::CreateProfile(ini_.pFileName, LoadText(text_id::kGeneral), keys);
}

std::string clsPropDefault::Read(int key, const std::string& fallback) const {
  return ini_.GetStr(LoadText(text_id::kGeneral), LoadText(key), fallback);
}

bool clsPropDefault::ReadFlag(int key, const char* fallback) const {
  return ToBoolean(Read(key, fallback));
}

double clsPropDefault::ReadNumber(int key, const char* fallback) const {
  double number = 0;
  return ToNumber(Read(key, fallback), &number) ? number : std::numeric_limits<double>::quiet_NaN();
}

void clsPropDefault::Write(int key, const std::string& value) {
  ini_.SetStr(LoadText(text_id::kGeneral), LoadText(key), value);
}

void clsPropDefault::WriteNumber(int key, std::int16_t value) {
  Write(key, std::to_string(value));
}

bool clsPropDefault::CONFIRMALWAYS() const {
  return ReadFlag(text_id::kConfirmAlways, "0");
}
void clsPropDefault::CONFIRMALWAYS(std::int16_t value) {
  WriteNumber(text_id::kConfirmAlways, value);
}
bool clsPropDefault::CHECKARCHIVE() const {
  return ReadFlag(text_id::kCheckArchive, "0");
}
void clsPropDefault::CHECKARCHIVE(std::int16_t value) {
  WriteNumber(text_id::kCheckArchive, value);
}
bool clsPropDefault::CONFIRMOVERWRITE() const {
  return ReadFlag(text_id::kConfirmOverwrite, "0");
}
void clsPropDefault::CONFIRMOVERWRITE(std::int16_t value) {
  WriteNumber(text_id::kConfirmOverwrite, value);
}
bool clsPropDefault::SHOWRESULT() const {
  return ReadFlag(text_id::kShowResult, "0");
}
void clsPropDefault::SHOWRESULT(std::int16_t value) {
  WriteNumber(text_id::kShowResult, value);
}
bool clsPropDefault::KEYCHECK() const {
  return ReadFlag(text_id::kKeyCheck, "0");
}
void clsPropDefault::KEYCHECK(std::int16_t value) {
  WriteNumber(text_id::kKeyCheck, value);
}
bool clsPropDefault::TEST() const {
  return ReadFlag(text_id::kTest, "0");
}
void clsPropDefault::TEST(std::int16_t value) {
  WriteNumber(text_id::kTest, value);
}
bool clsPropDefault::AUTOCOMPDIR() const {
  return ReadFlag(text_id::kAutoCompDir, "1");
}
void clsPropDefault::AUTOCOMPDIR(std::int16_t value) {
  WriteNumber(text_id::kAutoCompDir, value);
}

std::string clsPropDefault::FILER() const {
  return Read(text_id::kFiler, "");
}
void clsPropDefault::FILER(const std::string& value) {
  Write(text_id::kFiler, value);
}
std::string clsPropDefault::FILERPARM() const {
  return Read(text_id::kFilerParm, "");
}
void clsPropDefault::FILERPARM(const std::string& value) {
  Write(text_id::kFilerParm, value);
}

std::string clsPropDefault::ARCHIVECHARSET() const {
  return Read(text_id::kArchiveCharset, "");
}
void clsPropDefault::ARCHIVECHARSET(const std::string& value) {
  Write(text_id::kArchiveCharset, value);
}
std::int16_t clsPropDefault::ACTION() const {
  const double number = ReadNumber(text_id::kAction, "1");
  for (std::int16_t action = 0; action <= 7; ++action) {
    if (number == action) return action;
  }
  return 1;
}
void clsPropDefault::ACTION(std::int16_t value) {
  WriteNumber(text_id::kAction, value);
}

std::string clsPropDefault::EXTRACTTO() const {
  return Read(text_id::kExtractTo, folders_.default_destination);
}
void clsPropDefault::EXTRACTTO(const std::string& value) {
  Write(text_id::kExtractTo, value);
}
std::string clsPropDefault::MOVETO() const {
  return Read(text_id::kMoveTo, folders_.default_destination);
}
void clsPropDefault::MOVETO(const std::string& value) {
  Write(text_id::kMoveTo, value);
}
std::string clsPropDefault::COPYTO() const {
  return Read(text_id::kCopyTo, folders_.default_destination);
}
void clsPropDefault::COPYTO(const std::string& value) {
  Write(text_id::kCopyTo, value);
}

std::int16_t clsPropDefault::SMARTRENAME() const {
  const double number = ReadNumber(text_id::kSmartRename, "3");
  if (number == 1) return 1;
  return number == 2 ? 2 : 3;
}
void clsPropDefault::SMARTRENAME(std::int16_t value) {
  WriteNumber(text_id::kSmartRename, value);
}

std::int16_t clsPropDefault::EXTRACTTYPE() const {
  return ReadNumber(text_id::kExtractType, "1") == 2 ? 2 : 1;
}
void clsPropDefault::EXTRACTTYPE(std::int16_t value) {
  WriteNumber(text_id::kExtractType, value);
}

bool clsPropDefault::SMARTMAKEDIR() const {
  return ReadFlag(text_id::kSmartMakeDir, "0");
}
void clsPropDefault::SMARTMAKEDIR(std::int16_t value) {
  WriteNumber(text_id::kSmartMakeDir, value);
}
bool clsPropDefault::OPENDIR() const {
  return ReadFlag(text_id::kOpenDir, "0");
}
void clsPropDefault::OPENDIR(std::int16_t value) {
  WriteNumber(text_id::kOpenDir, value);
}

}  // namespace quendle
