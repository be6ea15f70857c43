#include "settings/clsPropDefault.h"

#include "base/modString.h"
#include "base/modSystem.h"
#include "base/text.h"
#include "platform/ini/profile.h"

namespace quendle {
clsPropDefault::clsPropDefault(const SettingsFolders& folders, bool create_files) : folders_(folders) {
  if (create_files) CreateDefaultFiles();
  SetMode(kStandard);
}

void clsPropDefault::SetMode(std::int16_t mode) {
  if (mode != kStandard && mode != kTestMode) ProgrammingError("settings mode other than 0 or 6");
  ini_.pFileName = AddBackslash(folders_.application) +
                   LoadText(mode == kStandard ? TextId::kStandardFile : TextId::kTestFile);
}

void clsPropDefault::CreateDefaultFiles() {
  SetMode(kStandard);
  CreateFile(SettingsFile::kStandard);
  SetMode(kTestMode);
  CreateFile(SettingsFile::kTest);
}

// All keys go in at once: fifteen single writes would be fifteen synced files on the first start. The look at
// the file here only spares every later start the lock.
void clsPropDefault::CreateFile(SettingsFile file) {
  if (FileExists(ini_.pFileName) || !creation_failure_.ok()) return;
  if (!MakeDirNested(folders_.application, &creation_failure_)) return;
  platform::KeysAndValues keys;
  for (const auto& [name, value] : InitialValues(file)) {
    keys.emplace_back(LoadText(name), value == nullptr ? folders_.default_destination : value);
  }
  creation_failure_ = platform::CreateProfile(ini_.pFileName, LoadText(TextId::kGeneral), keys);
}

SettingsValues clsPropDefault::Values() const {
  return {[this](TextId name) { return ini_.GetStr(LoadText(TextId::kGeneral), LoadText(name), ""); },
          folders_.default_destination};
}

void clsPropDefault::Write(TextId key, const std::string& value) {
  ini_.SetStr(LoadText(TextId::kGeneral), LoadText(key), value);
}

}  // namespace quendle
