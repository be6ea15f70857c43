// What saving a draft checks, and saving it.
#include <algorithm>

#include "base/modString.h"
#include "base/text.h"
#include "core/edit_draft.h"
#include "core/edit_keys.h"
#include "core/pattern_problem.h"
#include "platform/code_page.h"
#include "resources/string_table.h"

namespace quendle {
namespace {

constexpr int kNotAbsolute = 6022;
constexpr int kHasParent = 6023;
constexpr int kTooLong = 6673;
constexpr int kHasBreak = 6674;
constexpr int kUnknownCharset = 6677;

bool HasBreak(const std::string& text) {
  return text.find_first_of(std::string_view("\r\n\0", 3)) != std::string::npos;
}

}  // namespace

std::string EditDraft::Stored(int key) const {
  const std::string& text = Text(key);
  return RuleOf(key).kind == EditKey::Kind::kFolder ? NormalizePathChars(text, 0) : text;
}

std::optional<EditDraft::Problem> EditDraft::ProblemOf(int key) const {
  const std::string stored = Stored(key);
  if (stored.empty()) return std::nullopt;
  if (HasBreak(stored)) return Problem{LoadText(kHasBreak)};
  if (MayBeCut(stored)) return Problem{LoadText(kTooLong)};
  if (RuleOf(key).kind == EditKey::Kind::kFolder) {
    if (!IsAbsolutePath(stored)) return Problem{LoadText(kNotAbsolute)};
    if (HasParentComponent(stored)) return Problem{LoadText(kHasParent)};
  }
  if (key == text_id::kPattern) {
    if (const std::string why = PatternProblem(stored); !why.empty()) return Problem{why, true};
  }
  if (key == text_id::kArchiveCharset && !platform::TextFromEncoding("", stored)) {
    return Problem{LoadText(kUnknownCharset, {stored}), true};
  }
  return std::nullopt;
}

// A folder that nobody touched stays as it is, whatever is in it.
bool EditDraft::IsChanged(const Value& value) const {
  return value.current != value.original && Stored(value.key) != value.original;
}

std::vector<int> EditDraft::ChangedKeys() const {
  std::vector<int> keys;
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
  comparison.is_title_taken = mode_ == clsPropItem::kEditingNew && is_in_file;
  comparison.is_gone = mode_ == clsPropItem::kEditingProfile && !is_in_file;
  if (comparison.is_gone || mode_ == clsPropItem::kEditingNew) return comparison;
  for (Value& value : values_) {
    const std::string theirs = Read(value.key);
    if (theirs == value.original) continue;
    if (!IsChanged(value)) {
      changed_by_others_.push_back(value.key);
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
  mode_ = clsPropItem::kEditingNew;
  for (Value& value : values_) value.original.clear();
}

platform::Result EditDraft::Write(Value* value) {
  const std::string stored = Stored(value->key);
  if (!ini_.SetStr(title_, LoadText(value->key), stored)) return ini_.LastFailure();
  value->original = value->current = stored;
  saved_keys_.push_back(value->key);
  return platform::Success();
}

platform::Result EditDraft::Save() {
  // One key makes the section, and then it is a profile like any other.
  if (mode_ == clsPropItem::kEditingNew) {
    if (platform::Result made = Write(&Find(text_id::kPattern)); !made.ok()) return made;
    mode_ = clsPropItem::kEditingProfile;
  }
  for (Value& value : values_) {
    if (!IsChanged(value)) continue;
    if (platform::Result written = Write(&value); !written.ok()) return written;
  }
  return platform::Success();
}

}  // namespace quendle
