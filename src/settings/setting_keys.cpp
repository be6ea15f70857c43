#include "settings/setting_keys.h"

#include <cmath>

#include "base/modSystem.h"
#include "resources/string_table.h"
#include "settings/action_steps.h"

namespace quendle {
namespace {

using enum SettingKey::Kind;
using enum SettingKey::Inherited;
using enum TextId;

constexpr unsigned kP = static_cast<unsigned>(SettingsFile::kProfile);
constexpr unsigned kS = static_cast<unsigned>(SettingsFile::kStandard);
constexpr unsigned kT = static_cast<unsigned>(SettingsFile::kTest);

constexpr SettingKey kKeys[] = {
    {kPattern, kText, kP},
    {kId, kFlag, kP, kNever, 0, 1},
    {kAction, kNumber, kP | kS, kWithoutId, kNoSteps, kAllSteps, kNoSteps,
     WithStep(kNoSteps, StepKind::kExtract)},
    {kSmartRename, kNumber, kP | kS | kT, kWithoutId, 1, 3, 1, 3},
    {kExtractType, kNumber, kP | kS | kT, kWithoutId, 1, 2, 1, 1},
    {kSmartMakeDir, kFlag, kP | kS | kT, kWithoutId, 0, 1},
    {kOpenDir, kFlag, kP | kS | kT, kWithoutId, 0, 1},
    {kExtractTo, SettingKey::Kind::kFolder, kP | kS | kT, kWhenEmpty},
    {kMoveTo, SettingKey::Kind::kFolder, kP | kS, kWhenEmpty},
    {kCopyTo, SettingKey::Kind::kFolder, kP | kS, kWhenEmpty},
    {kInclude, kText, kP},
    {kExclude, kText, kP},
    {kOpenFile, kText, kP},
    {kConfirmAlways, kFlag, kS, kNever, 0, 1},
    {kKeyCheck, kFlag, kS, kNever, 0, 1},
    {kCheckArchive, kFlag, kS, kNever, 0, 1},
    {kConfirmOverwrite, kFlag, kS, kNever, 0, 1},
    {kShowResult, kFlag, kS, kNever, 0, 1},
    {TextId::kTest, kFlag, kS, kNever, 0, 1},
    {kAutoCompDir, kFlag, kS, kNever, 0, 1, 0, 1},
    {kFiler, kText, kS},
    {kFilerParm, kText, kS},
    {kArchiveCharset, kText, kS},
};

constexpr InitialValue kNewStandard[] = {
    {kExtractTo, nullptr}, {kCopyTo, nullptr},   {kMoveTo, nullptr},    {kAction, "1"},
    {kAutoCompDir, "1"},   {kCheckArchive, "0"}, {kConfirmAlways, "1"}, {kConfirmOverwrite, "0"},
    {kExtractType, "1"},   {kSmartRename, "3"},  {kSmartMakeDir, "0"},  {kOpenDir, "1"},
    {kShowResult, "1"},    {kKeyCheck, "0"},     {TextId::kTest, "0"},
};
constexpr InitialValue kNewTest[] = {
    {kExtractTo, nullptr}, {kExtractType, "1"}, {kSmartRename, "3"}, {kOpenDir, "1"}, {kSmartMakeDir, "0"},
};

}  // namespace

std::span<const SettingKey> SettingKeys() {
  return kKeys;
}

const SettingKey& KeyOf(TextId name) {
  for (const SettingKey& key : kKeys) {
    if (key.name == name) return key;
  }
  ProgrammingError("a key that no settings file has");
}

std::optional<std::int16_t> NumberOf(const SettingKey& key, SettingsFile file, const std::string& text) {
  if (key.kind == kFlag) return ToBoolean(text) ? std::int16_t{1} : std::int16_t{0};
  double number = 0;
  if (!ToNumber(text, &number)) return std::nullopt;
  const double whole = std::nearbyint(number);
  const bool counts = file == SettingsFile::kProfile || whole == number;
  if (!counts || whole < key.lowest || whole > key.highest) return std::nullopt;
  return static_cast<std::int16_t>(whole);
}

std::span<const InitialValue> InitialValues(SettingsFile file) {
  if (file == SettingsFile::kStandard) return kNewStandard;
  if (file == SettingsFile::kTest) return kNewTest;
  ProgrammingError("a new items.ini holds nothing");
}

}  // namespace quendle
