// What saving a draft checks, and saving it.
#include <algorithm>

#include "base/modString.h"
#include "base/text.h"
#include "core/edit_draft.h"
#include "core/edit_keys.h"
#include "core/pattern_problem.h"
#include "platform/text/code_page.h"
#include "resources/string_table.h"
#include "settings/setting_keys.h"

namespace quendle {
namespace {

bool HasBreak(const std::string& text) {
  return text.find_first_of(std::string_view("\r\n\0", 3)) != std::string::npos;
}

// Of the first of several patterns that the engine refuses.
std::string PatternListProblem(const std::string& patterns) {
  const std::string list = patterns + ";";
  for (std::size_t begin = 0, end; (end = list.find(';', begin)) != std::string::npos; begin = end + 1) {
    const std::string pattern = list.substr(begin, end - begin);
    if (const std::string why = PatternProblem(pattern); !why.empty()) return pattern + ": " + why;
  }
  return "";
}

}  // namespace

std::string EditDraft::Stored(TextId key) const {
  const std::string& text = Text(key);
  return KeyOf(key).kind == SettingKey::Kind::kFolder ? NormalizePathChars(text, 0) : text;
}

std::optional<EditDraft::Problem> EditDraft::ProblemOf(TextId key) const {
  const std::string stored = Stored(key);
  if (stored.empty()) return std::nullopt;
  if (HasBreak(stored)) return Problem{LoadText(why::kValueHasBreak)};
  if (MayBeCut(stored)) return Problem{LoadText(why::kPatternMayBeCut)};
  if (KeyOf(key).kind == SettingKey::Kind::kFolder) {
    if (!IsAbsolutePath(stored)) return Problem{LoadText(why::kDestinationNotAbsolute)};
    if (HasParentComponent(stored)) return Problem{LoadText(why::kDestinationGoesUp)};
  }
  std::string why;
  if (key == TextId::kPattern) why = PatternProblem(stored);
  if (key == TextId::kInclude || key == TextId::kExclude) why = PatternListProblem(stored);
  if (!why.empty()) return Problem{why, true};
  if (key == TextId::kArchiveCharset && !platform::TextFromEncoding("", stored)) {
    return Problem{LoadText(TextId::kUnknownCharset, {stored}), true};
  }
  return std::nullopt;
}

// A folder that nobody touched stays as it is, whatever is in it.
bool EditDraft::IsChanged(const Value& value) const {
  return value.current != value.original && Stored(value.key) != value.original;
}

std::vector<TextId> EditDraft::ChangedKeys() const {
  std::vector<TextId> keys;
  for (const Value& value : values_) {
    if (IsChanged(value)) keys.push_back(value.key);
  }
  return keys;
}

bool EditDraft::IsTitleInFile() const {
  std::vector<std::string> titles;
  ini_.EnumSection(&titles);
  return std::any_of(titles.begin(), titles.end(),
                     [this](const std::string& title) { return EqualsIgnoringCase(title, title_); });
}

EditDraft::Comparison EditDraft::CompareWithFile() {
  Comparison comparison;
  const bool is_in_file = IsProfile() && IsTitleInFile();
  comparison.is_title_taken = mode_ == EditMode::kNew && is_in_file;
  comparison.is_gone = mode_ == EditMode::kProfile && !is_in_file;
  if (comparison.is_gone || mode_ == EditMode::kNew) return comparison;
  for (Value& value : values_) {
    const std::string theirs = Read(value.key);
    if (theirs == value.original) continue;
    if (!IsChanged(value)) {
      value.is_changed_by_others = true;
      value.original = value.current = theirs;
    } else if (Stored(value.key) == theirs) {
      value.original = value.current = theirs;
    } else {
      comparison.conflicts.push_back({value.key, theirs});
    }
  }
  return comparison;
}

void EditDraft::Settle(const Comparison::Conflict& conflict, bool mine) {
  Value& value = Find(conflict.key);
  value.original = conflict.theirs;
  if (!mine) value.current = conflict.theirs;
}

void EditDraft::BecomeNew() {
  mode_ = EditMode::kNew;
  for (Value& value : values_) value.original.clear();
}

std::vector<TextId> EditDraft::ChangedByOthers() const {
  std::vector<TextId> keys;
  for (const Value& value : values_) {
    if (value.is_changed_by_others) keys.push_back(value.key);
  }
  return keys;
}

// One key makes the section of a new profile.
bool EditDraft::IsToBeWritten(const Value& value) const {
  return IsChanged(value) || (mode_ == EditMode::kNew && value.key == TextId::kPattern);
}

clsIniFile::KeysAndValues EditDraft::Unsaved() const {
  clsIniFile::KeysAndValues keys;
  for (const Value& value : values_) {
    if (IsToBeWritten(value)) keys.emplace_back(LoadText(value.key), Stored(value.key));
  }
  return keys;
}

void EditDraft::MarkSaved() {
  for (Value& value : values_) {
    if (!IsToBeWritten(value)) continue;
    value.original = value.current = Stored(value.key);
    value.is_changed_by_others = false;
    is_saved_ = true;
  }
  if (mode_ == EditMode::kNew) mode_ = EditMode::kProfile;  // like any other from now on
}

platform::Result EditDraft::Save(Comparison* comparison) {
  const auto choose = [this, comparison] {
    *comparison = CompareWithFile();
    return comparison->IsSettled() ? Unsaved() : clsIniFile::KeysAndValues();
  };
  if (Unsaved().empty()) {  // also where nothing can be written
    choose();
  } else if (!ini_.SetStrings(title_, choose)) {
    return ini_.LastFailure();
  }
  if (comparison->IsSettled()) MarkSaved();
  return platform::Success();
}

}  // namespace quendle
