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
    {TextId::kPattern, TextId::kEditorPattern, TextId::kEditorPatternHint},
    {TextId::kId, TextId::kEditorId, TextId::kEditorIdHint},
    {TextId::kAction, TextId::kEditorAction, TextId::kEditorActionHint},
    {TextId::kSmartRename, TextId::kEditorSmartRename, TextId::kEditorSmartRenameHint},
    {TextId::kExtractType, TextId::kEditorExtractType, TextId::kEditorExtractTypeHint},
    {TextId::kSmartMakeDir, TextId::kEditorSmartMakeDir, TextId::kSmartMakeDirHint},
    {TextId::kOpenDir, TextId::kEditorOpenDir, TextId::kOpenDirHint},
    {TextId::kExtractTo, TextId::kEditorExtractTo, TextId::kEditorFolderHint},
    {TextId::kMoveTo, TextId::kEditorMoveTo, TextId::kEditorFolderHint},
    {TextId::kCopyTo, TextId::kEditorCopyTo, TextId::kEditorFolderHint},
    {TextId::kInclude, TextId::kEditorInclude, TextId::kEditorIncludeHint},
    {TextId::kExclude, TextId::kEditorExclude, TextId::kEditorExcludeHint},
    {TextId::kOpenFile, TextId::kEditorOpenFile, TextId::kEditorOpenFileHint},
    {TextId::kConfirmAlways, TextId::kEditorConfirmAlways, TextId::kEditorConfirmAlwaysHint},
    {TextId::kKeyCheck, TextId::kEditorKeyCheck, TextId::kEditorKeyCheckHint},
    {TextId::kCheckArchive, TextId::kEditorCheckArchive, TextId::kEditorCheckArchiveHint},
    {TextId::kConfirmOverwrite, TextId::kEditorConfirmOverwrite, TextId::kEditorConfirmOverwriteHint},
    {TextId::kShowResult, TextId::kEditorShowResult, TextId::kEditorShowResultHint},
    {TextId::kTest, TextId::kEditorTest, TextId::kEditorTestHint},
    {TextId::kAutoCompDir, TextId::kEditorAutoCompDir, TextId::kEditorAutoCompDirHint},
    {TextId::kFiler, TextId::kEditorFiler, TextId::kEditorFilerHint},
    {TextId::kFilerParm, TextId::kEditorFilerParm, TextId::kEditorFilerParmHint},
    {TextId::kArchiveCharset, TextId::kEditorArchiveCharset, TextId::kEditorArchiveCharsetHint},
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

std::vector<TextId> KeysOfEditor(EditMode mode) {
  std::vector<TextId> names;
  for (const SettingKey& key : SettingKeys()) {
    if (IsShown(key, mode)) names.push_back(key.name);
  }
  return names;
}

const EditCaption& CaptionOf(TextId key) {
  for (const EditCaption& caption : kCaptions) {
    if (caption.key == key) return caption;
  }
  ProgrammingError("a key that the editor does not have");
}

std::string KeyName(TextId key) {
  const std::string caption = LoadText(CaptionOf(key).label);
  const std::string name = caption.substr(0, caption.find("(&"));
  const std::string colon = "：";
  return name.ends_with(colon) ? name.substr(0, name.size() - colon.size()) : name;
}

std::string ValueText(TextId key, const std::string& stored) {
  constexpr TextId kRenames[] = {TextId::kRenameNever, TextId::kRenameAlways, TextId::kRenameWhenTaken};
  constexpr TextId kTypes[] = {TextId::kOverwriteValue, TextId::kUpdateValue};
  const SettingKey& rule = KeyOf(key);
  if (stored.empty()) return LoadText(TextId::kEmptyValue);
  if (rule.kind == SettingKey::Kind::kFlag) {
    return LoadText(ToBoolean(stored) ? TextId::kOnValue : TextId::kOffValue);
  }
  if (key == TextId::kAction) return StoredActionText(stored);
  double number = 0;
  if (rule.kind == SettingKey::Kind::kNumber && ToNumber(stored, &number)) {
    for (int choice = rule.lowest; choice <= rule.highest; ++choice) {
      if (number != choice) continue;
      return LoadText(key == TextId::kSmartRename ? kRenames[choice - 1] : kTypes[choice - 1]);
    }
  }
  return rule.kind == SettingKey::Kind::kFolder ? ForDisplay(stored) : stored;
}

}  // namespace quendle
