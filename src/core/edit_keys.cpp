#include "core/edit_keys.h"

#include "base/display.h"
#include "base/modSystem.h"
#include "base/text.h"
#include "core/action_text.h"
#include "resources/string_table.h"
#include "settings/setting_keys.h"

namespace quendle {
namespace {

constexpr EditCaption kCaptions[] = {
    {text_id::kPattern, 6612, 6613},
    {text_id::kId, 6614, 6615},
    {text_id::kAction, 6616, 6617},
    {text_id::kSmartRename, 6624, 6625},
    {text_id::kExtractType, 6626, 6627},
    {text_id::kSmartMakeDir, 6628, 4108},
    {text_id::kOpenDir, 6629, 4110},
    {text_id::kExtractTo, 6618, 6619},
    {text_id::kMoveTo, 6620, 6619},
    {text_id::kCopyTo, 6622, 6619},
    {text_id::kInclude, 6630, 6631},
    {text_id::kExclude, 6632, 6633},
    {text_id::kOpenFile, 6634, 6635},
    {text_id::kConfirmAlways, 6636, 6637},
    {text_id::kKeyCheck, 6638, 6639},
    {text_id::kCheckArchive, 6640, 6641},
    {text_id::kConfirmOverwrite, 6642, 6643},
    {text_id::kShowResult, 6644, 6645},
    {text_id::kTest, 6646, 6647},
    {text_id::kAutoCompDir, 6648, 6649},
    {text_id::kFiler, 6650, 6651},
    {text_id::kFilerParm, 6652, 6653},
    {text_id::kArchiveCharset, 6654, 6655},
};

bool IsShown(const SettingKey& key, EditMode mode) {
  switch (mode) {
    case EditMode::kProfile:
    case EditMode::kNew:
      return key.IsIn(SettingsFile::kProfile);
    case EditMode::kStandard:  // what profiles inherit
      return key.IsIn(SettingsFile::kStandard) && key.IsIn(SettingsFile::kProfile);
    case EditMode::kGeneral:
      return key.IsIn(SettingsFile::kStandard) && !key.IsIn(SettingsFile::kProfile);
    case EditMode::kTest:
      return key.IsIn(SettingsFile::kTest);
  }
  ProgrammingError("the editor is called in a mode that it does not have");
}

std::string StoredActionText(const std::string& stored) {
  double number = 0;
  if (!ToNumber(stored, &number) || number < kNoSteps + 1 || number > kAllSteps) return stored;
  return ActionText(static_cast<std::int16_t>(number), "+");
}

}  // namespace

std::vector<int> KeysOfEditor(EditMode mode) {
  std::vector<int> names;
  for (const SettingKey& key : SettingKeys()) {
    if (IsShown(key, mode)) names.push_back(key.name);
  }
  return names;
}

const EditCaption& CaptionOf(int key) {
  for (const EditCaption& caption : kCaptions) {
    if (caption.key == key) return caption;
  }
  ProgrammingError("a key that the editor does not have");
}

std::string KeyName(int key) {
  const std::string caption = LoadText(CaptionOf(key).label);
  const std::string name = caption.substr(0, caption.find("(&"));
  const std::string colon = "：";
  return name.ends_with(colon) ? name.substr(0, name.size() - colon.size()) : name;
}

std::string ValueText(int key, const std::string& stored) {
  constexpr int kEmpty = 6687, kOff = 6689, kOn = 6688;
  constexpr int kRenames[] = {1872, 1873, 1874};
  constexpr int kTypes[] = {6658, 6659};
  const SettingKey& rule = KeyOf(key);
  if (stored.empty()) return LoadText(kEmpty);
  if (rule.kind == SettingKey::Kind::kFlag) return LoadText(ToBoolean(stored) ? kOn : kOff);
  if (key == text_id::kAction) return StoredActionText(stored);
  double number = 0;
  if (rule.kind == SettingKey::Kind::kNumber && ToNumber(stored, &number)) {
    for (int choice = rule.lowest; choice <= rule.highest; ++choice) {
      if (number != choice) continue;
      return LoadText(key == text_id::kSmartRename ? kRenames[choice - 1] : kTypes[choice - 1]);
    }
  }
  return rule.kind == SettingKey::Kind::kFolder ? ForDisplay(stored) : stored;
}

}  // namespace quendle
