#include "core/edit_draft.h"

#include <algorithm>
#include <utility>

#include "base/modString.h"
#include "base/modSystem.h"
#include "base/text.h"
#include "core/edit_keys.h"
#include "resources/string_table.h"
#include "settings/setting_keys.h"

namespace quendle {
namespace {

// Larger than what the settings themselves read: a value that is too long for them is shown whole, and not lost when it
// is made shorter.
constexpr std::int32_t kWholeValues = 131073;

}  // namespace

EditDraft::EditDraft(EditMode mode, std::string title, const Stores& stores)
    : mode_(mode), title_(std::move(title)), stores_(stores) {
  ini_.pFileName = IsProfile() ? stores_.items.FileName() : Settings().FileName();
  ini_.pBUFFER(kWholeValues);
  if (!IsProfile()) title_ = LoadText(TextId::kGeneral);
  for (const TextId key : KeysOfEditor(mode)) {
    const std::string text = mode_ == EditMode::kNew ? "" : Read(key);
    values_.push_back({key, text, text, ""});
  }
}

bool EditDraft::IsProfile() const {
  return mode_ == EditMode::kProfile || mode_ == EditMode::kNew;
}

const clsPropDefault& EditDraft::Settings() const {
  return mode_ == EditMode::kTest ? stores_.test : stores_.standard;
}

std::vector<TextId> EditDraft::Keys() const {
  return KeysOfEditor(mode_);
}

bool EditDraft::Has(TextId key) const {
  return std::any_of(values_.begin(), values_.end(), [key](const Value& value) { return value.key == key; });
}

const EditDraft::Value& EditDraft::Find(TextId key) const {
  for (const Value& value : values_) {
    if (value.key == key) return value;
  }
  ProgrammingError("a key that the editor does not have");
}

EditDraft::Value& EditDraft::Find(TextId key) {
  return const_cast<Value&>(std::as_const(*this).Find(key));
}

std::string EditDraft::Read(TextId key) const {
  return ini_.GetStr(title_, LoadText(key), "");
}

const std::string& EditDraft::Text(TextId key) const {
  return Find(key).current;
}

void EditDraft::SetText(TextId key, const std::string& text) {
  Find(key).current = text;
}

int EditDraft::Number(TextId key) const {
  return IsInherited(key) ? stores_.standard.Values().Number(key) : Meaning(key, Find(key).current);
}

// What the stored text of a key counts as, if it counts at all.
int EditDraft::Meaning(TextId key, const std::string& text) const {
  if (!IsProfile()) return SettingsValues([&text](TextId) { return text; }, "").Number(key);
  const SettingKey& rule = KeyOf(key);
  if (text.empty()) return rule.missing_in_profile;
  const std::optional<std::int16_t> number = NumberOf(rule, SettingsFile::kProfile, text);
  return number ? *number : stores_.standard.Values().Number(key);
}

// A stored text that says the same already ("-1" for a ticked box) is left as it is.
void EditDraft::SetNumber(TextId key, int number) {
  Value& value = Find(key);
  const bool was_on = Meaning(key, value.current) != 0;
  value.current = Meaning(key, value.original) == number ? value.original : std::to_string(number);
  const bool was_on_in_file = Meaning(key, value.original) != 0;
  if (key == TextId::kId && was_on != (number != 0) && !was_on_in_file) SeedOwnValues(number != 0);
}

bool EditDraft::IsInherited(TextId key) const {
  return IsProfile() && KeyOf(key).inherited == SettingKey::Inherited::kWithoutId &&
         Meaning(TextId::kId, Find(TextId::kId).current) == 0;
}

// A profile that is taken from the standard settings would otherwise do nothing at first.
void EditDraft::SeedOwnValues(bool on) {
  for (Value& value : values_) {
    if (KeyOf(value.key).inherited != SettingKey::Inherited::kWithoutId) continue;
    if (on && value.current.empty()) {
      SetNumber(value.key, stores_.standard.Values().Number(value.key));
      value.seed = value.current;
    } else if (!on && !value.seed.empty()) {
      if (value.current == value.seed) value.current = value.original;
      value.seed.clear();
    }
  }
}

std::string EditDraft::InheritedFolder(TextId key) const {
  return IsProfile() ? stores_.standard.Values().Text(key) : Settings().DefaultDestination();
}

std::string EditDraft::PickedFolder(const std::string& folder) const {
  if (!IsProfile() || !stores_.standard.AUTOCOMPDIR()) return folder;
  const std::string name = TitleAsName(title_);
  return name.empty() ? folder : AddBackslash(folder) + name;
}

}  // namespace quendle
