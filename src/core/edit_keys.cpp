#include "core/edit_keys.h"

#include <map>

#include "base/display.h"
#include "base/modSystem.h"
#include "base/text.h"
#include "core/failure_text.h"
#include "resources/string_table.h"

namespace quendle {
namespace {

constexpr auto kText = EditKey::Kind::kText;
constexpr auto kFolder = EditKey::Kind::kFolder;
constexpr auto kFlag = EditKey::Kind::kFlag;
constexpr auto kNumber = EditKey::Kind::kNumber;

constexpr EditKey kKeys[] = {
    {text_id::kPattern, kText, 6612, 6613},
    {text_id::kId, kFlag, 6614, 6615},
    {text_id::kAction, kNumber, 6616, 6617, 0, 7, 0, 1, true},
    {text_id::kSmartRename, kNumber, 6624, 6625, 1, 3, 1, 3, true},
    {text_id::kExtractType, kNumber, 6626, 6627, 1, 2, 1, 1, true},
    {text_id::kSmartMakeDir, kFlag, 6628, 4108, 0, 1, 0, 0, true},
    {text_id::kOpenDir, kFlag, 6629, 4110, 0, 1, 0, 0, true},
    {text_id::kExtractTo, kFolder, 6618, 6619},
    {text_id::kMoveTo, kFolder, 6620, 6619},
    {text_id::kCopyTo, kFolder, 6622, 6619},
    {text_id::kInclude, kText, 6630, 6631},
    {text_id::kExclude, kText, 6632, 6633},
    {text_id::kOpenFile, kText, 6634, 6635},
    {text_id::kConfirmAlways, kFlag, 6636, 6637},
    {text_id::kKeyCheck, kFlag, 6638, 6639},
    {text_id::kCheckArchive, kFlag, 6640, 6641},
    {text_id::kConfirmOverwrite, kFlag, 6642, 6643},
    {text_id::kShowResult, kFlag, 6644, 6645},
    {text_id::kTest, kFlag, 6646, 6647},
    {text_id::kAutoCompDir, kFlag, 6648, 6649, 0, 1, 0, 1},
    {text_id::kFiler, kText, 6650, 6651},
    {text_id::kFilerParm, kText, 6652, 6653},
    {text_id::kArchiveCharset, kText, 6654, 6655},
};

std::string ActionText(const std::string& stored) {
  double number = 0;
  if (!ToNumber(stored, &number) || number < 1 || number > 7) return stored;
  std::string text;
  for (const StepKind kind : {StepKind::kExtract, StepKind::kMove, StepKind::kCopy}) {
    if ((static_cast<int>(number) & static_cast<int>(kind)) == 0) continue;
    if (!text.empty()) text += "+";
    text += StepName(kind);
  }
  return text;
}

}  // namespace

const std::vector<int>& KeysOfEditor(EditMode mode) {
  using namespace text_id;
  static const std::vector<int> profile = {kPattern,      kId,      kAction,    kSmartRename, kExtractType,
                                           kSmartMakeDir, kOpenDir, kExtractTo, kMoveTo,      kCopyTo,
                                           kInclude,      kExclude, kOpenFile};
  static const std::map<EditMode, std::vector<int>> keys = {
      {EditMode::kProfile, profile},
      {EditMode::kNew, profile},
      {EditMode::kStandard,
       {kAction, kSmartRename, kExtractType, kSmartMakeDir, kOpenDir, kExtractTo, kMoveTo, kCopyTo}},
      {EditMode::kGeneral,
       {kConfirmAlways, kKeyCheck, kCheckArchive, kConfirmOverwrite, kShowResult, kTest, kAutoCompDir, kFiler,
        kFilerParm, kArchiveCharset}},
      {EditMode::kTest, {kSmartRename, kExtractType, kSmartMakeDir, kOpenDir, kExtractTo}}};
  return keys.at(mode);
}

const EditKey& RuleOf(int key) {
  for (const EditKey& rule : kKeys) {
    if (rule.key == key) return rule;
  }
  ProgrammingError("a key that the editor does not have");
}

std::string KeyName(int key) {
  const std::string caption = LoadText(RuleOf(key).label);
  const std::string name = caption.substr(0, caption.find("(&"));
  const std::string colon = "：";
  return name.ends_with(colon) ? name.substr(0, name.size() - colon.size()) : name;
}

std::string ValueText(int key, const std::string& stored) {
  constexpr int kEmpty = 6687, kOff = 6689, kOn = 6688;
  constexpr int kRenames[] = {1872, 1873, 1874};
  constexpr int kTypes[] = {6658, 6659};
  const EditKey& rule = RuleOf(key);
  if (stored.empty()) return LoadText(kEmpty);
  if (rule.kind == EditKey::Kind::kFlag) return LoadText(ToBoolean(stored) ? kOn : kOff);
  if (key == text_id::kAction) return ActionText(stored);
  double number = 0;
  if (rule.kind == EditKey::Kind::kNumber && ToNumber(stored, &number)) {
    for (int choice = rule.lowest; choice <= rule.highest; ++choice) {
      if (number != choice) continue;
      return LoadText(key == text_id::kSmartRename ? kRenames[choice - 1] : kTypes[choice - 1]);
    }
  }
  return rule.kind == EditKey::Kind::kFolder ? ForDisplay(stored) : stored;
}

}  // namespace quendle
