#include "settings/setting_values.h"

#include <utility>

#include "base/modSystem.h"
#include "resources/string_table.h"

namespace quendle {
namespace {

using Inherited = SettingKey::Inherited;

const SettingKey& KeyIn(SettingsFile file, TextId name) {
  const SettingKey& key = KeyOf(name);
  if (!key.IsIn(file)) ProgrammingError("a key that this settings file does not have");
  return key;
}

}  // namespace

SettingsValues::SettingsValues(StoredText stored, std::string default_destination)
    : stored_(std::move(stored)), default_destination_(std::move(default_destination)) {}

std::string SettingsValues::Text(TextId name) const {
  const SettingKey& key = KeyIn(SettingsFile::kStandard, name);
  std::string text = stored_(name);
  return text.empty() && key.kind == SettingKey::Kind::kFolder ? default_destination_ : text;
}

std::int16_t SettingsValues::Number(TextId name) const {
  const SettingKey& key = KeyIn(SettingsFile::kStandard, name);
  const std::string text = stored_(name);
  if (text.empty()) return key.missing_in_settings;
  return NumberOf(key, SettingsFile::kStandard, text).value_or(key.missing_in_settings);
}

ProfileValues::ProfileValues(StoredText stored, SettingsValues standard)
    : stored_(std::move(stored)), standard_(std::move(standard)) {}

bool ProfileValues::IsInherited(TextId name) const {
  switch (KeyIn(SettingsFile::kProfile, name).inherited) {
    case Inherited::kWithoutId:
      return !Flag(TextId::kId) || (!stored_(name).empty() && !OwnNumber(name));
    case Inherited::kWhenEmpty:
      return stored_(name).empty();
    case Inherited::kNever:
      break;
  }
  return false;
}

std::string ProfileValues::Text(TextId name) const {
  return IsInherited(name) ? standard_.Text(name) : stored_(name);
}

std::int16_t ProfileValues::Number(TextId name) const {
  if (IsInherited(name)) return standard_.Number(name);
  return OwnNumber(name).value_or(KeyOf(name).missing_in_profile);
}

// Nothing for what is missing or out of range.
std::optional<std::int16_t> ProfileValues::OwnNumber(TextId name) const {
  const std::string text = stored_(name);
  return text.empty() ? std::nullopt : NumberOf(KeyOf(name), SettingsFile::kProfile, text);
}

}  // namespace quendle
