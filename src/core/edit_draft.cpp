#include "core/edit_draft.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "base/modString.h"
#include "base/modSystem.h"
#include "base/text.h"
#include "core/edit_keys.h"
#include "resources/string_table.h"

namespace quendle {
namespace {

// Larger than what the settings themselves read: a value that is too long for them is shown whole, and not lost when it
// is made shorter.
constexpr std::int32_t kWholeValues = 131073;

int InheritedNumber(const clsPropDefault& standard, int key) {
  switch (key) {
    case text_id::kAction:
      return standard.ACTION();
    case text_id::kSmartRename:
      return standard.SMARTRENAME();
    case text_id::kExtractType:
      return standard.EXTRACTTYPE();
    case text_id::kSmartMakeDir:
      return standard.SMARTMAKEDIR() ? 1 : 0;
    case text_id::kOpenDir:
      return standard.OPENDIR() ? 1 : 0;
    default:
      ProgrammingError("a key that no profile inherits");
  }
}

// Profiles round, the settings do not.
std::optional<int> InRange(const EditKey& rule, const std::string& text, bool rounds) {
  double number = 0;
  if (!ToNumber(text, &number)) return std::nullopt;
  const double whole = std::nearbyint(number);
  if (whole < rule.lowest || whole > rule.highest || (!rounds && whole != number)) return std::nullopt;
  return static_cast<int>(whole);
}

}  // namespace

EditDraft::EditDraft(EditMode mode, std::string title, const Stores& stores)
    : mode_(mode), title_(std::move(title)), stores_(stores) {
  ini_.pFileName = IsProfile() ? stores_.items.FileName() : Settings().FileName();
  ini_.pBUFFER(kWholeValues);
  if (!IsProfile()) title_ = LoadText(text_id::kGeneral);
  for (const int key : KeysOfEditor(mode)) {
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

std::vector<int> EditDraft::Keys() const {
  return KeysOfEditor(mode_);
}

bool EditDraft::Has(int key) const {
  return std::any_of(values_.begin(), values_.end(), [key](const Value& value) { return value.key == key; });
}

const EditDraft::Value& EditDraft::Find(int key) const {
  for (const Value& value : values_) {
    if (value.key == key) return value;
  }
  ProgrammingError("a key that the editor does not have");
}

EditDraft::Value& EditDraft::Find(int key) {
  return const_cast<Value&>(std::as_const(*this).Find(key));
}

std::string EditDraft::Read(int key) const {
  return ini_.GetStr(title_, LoadText(key), "");
}

const std::string& EditDraft::Text(int key) const {
  return Find(key).current;
}

void EditDraft::SetText(int key, const std::string& text) {
  Find(key).current = text;
}

int EditDraft::Number(int key) const {
  return IsInherited(key) ? InheritedNumber(stores_.standard, key) : Meaning(key, Find(key).current);
}

// What the stored text of a key counts as, if it counts at all.
int EditDraft::Meaning(int key, const std::string& text) const {
  const EditKey& rule = RuleOf(key);
  const int missing = IsProfile() ? rule.missing_in_profile : rule.missing_in_settings;
  if (text.empty()) return missing;
  if (rule.kind == EditKey::Kind::kFlag) return ToBoolean(text) ? 1 : 0;
  const std::optional<int> number = InRange(rule, text, IsProfile());
  if (number) return *number;
  return IsProfile() ? InheritedNumber(stores_.standard, key) : missing;
}

// A stored text that says the same already ("-1" for a ticked box) is left as it is.
void EditDraft::SetNumber(int key, int number) {
  Value& value = Find(key);
  const bool was_on = Meaning(key, value.current) != 0;
  value.current = Meaning(key, value.original) == number ? value.original : std::to_string(number);
  const bool was_on_in_file = Meaning(key, value.original) != 0;
  if (key == text_id::kId && was_on != (number != 0) && !was_on_in_file) SeedOwnValues(number != 0);
}

bool EditDraft::IsInherited(int key) const {
  return IsProfile() && RuleOf(key).is_behaviour && Meaning(text_id::kId, Find(text_id::kId).current) == 0;
}

// A profile that is taken from the standard settings would otherwise do nothing at first.
void EditDraft::SeedOwnValues(bool on) {
  for (Value& value : values_) {
    if (!RuleOf(value.key).is_behaviour) continue;
    if (on && value.current.empty()) {
      SetNumber(value.key, InheritedNumber(stores_.standard, value.key));
      value.seed = value.current;
    } else if (!on && !value.seed.empty()) {
      if (value.current == value.seed) value.current = value.original;
      value.seed.clear();
    }
  }
}

std::string EditDraft::InheritedFolder(int key) const {
  if (!IsProfile()) return Settings().DefaultDestination();
  if (key == text_id::kExtractTo) return stores_.standard.EXTRACTTO();
  return key == text_id::kMoveTo ? stores_.standard.MOVETO() : stores_.standard.COPYTO();
}

std::string EditDraft::PickedFolder(const std::string& folder) const {
  if (!IsProfile() || !stores_.standard.AUTOCOMPDIR()) return folder;
  const std::string name = TitleAsName(title_);
  return name.empty() ? folder : AddBackslash(folder) + name;
}

}  // namespace quendle
