#include "core/profile_list.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "base/display.h"
#include "base/modString.h"
#include "base/text.h"
#include "core/pattern_problem.h"
#include "core/profile_match.h"
#include "core/profile_problem.h"
#include "platform/ini/profile_document.h"
#include "platform/text/unicode.h"
#include "resources/string_table.h"
#include "settings/run_settings.h"

namespace quendle {
namespace {

ProfileRow RowOf(const std::string& title, const ProfileValues& profile) {
  constexpr TextId kFolders[kActionRows] = {TextId::kExtractTo, TextId::kMoveTo, TextId::kCopyTo};
  ProfileRow row{title,
                 profile.Text(TextId::kPattern),
                 profile.Number(TextId::kAction),
                 profile.IsInherited(TextId::kAction),
                 {}};
  for (std::size_t i = 0; i < kActionRows; ++i) {
    row.folders[i] = {profile.Text(kFolders[i]), profile.IsInherited(kFolders[i]),
                      Includes(row.action, kStepKinds[i])};
  }
  return row;
}

std::string SearchedText(const ProfileRow& row) {
  std::string text = std::string(row.title).append("\n").append(row.pattern);
  for (const ProfileRow::Folder& folder : row.folders) {
    if (folder.is_used) text.append("\n").append(folder.path);
  }
  return platform::UpperCase(text);
}

// "a (2)" => "a"
std::string WithoutNumber(const std::string& title) {
  if (!title.ends_with(')')) return title;
  const std::size_t begin = title.rfind(" (");
  if (begin == std::string::npos || begin == 0) return title;
  const std::string number = title.substr(begin + 2, title.size() - begin - 3);
  const bool is_number = !number.empty() && number.find_first_not_of("0123456789") == std::string::npos;
  return is_number ? title.substr(0, begin) : title;
}

bool HasBlankAtAnEnd(const std::string& title) {
  constexpr std::string_view kBlanks = " \t";
  return kBlanks.find(title.front()) != std::string_view::npos ||
         kBlanks.find(title.back()) != std::string_view::npos;
}

bool Contains(const std::vector<std::string>& titles, const std::string& title) {
  return std::any_of(titles.begin(), titles.end(),
                     [&title](const std::string& other) { return EqualsIgnoringCase(other, title); });
}

}  // namespace

// A title is the name of a section, and what the store would refuse is told here in words of its own.
std::string TitleProblem(const std::string& title) {
  if (title.empty()) return LoadText(TextId::kTitleEmpty);
  if (!platform::IsUtf8(title)) return LoadText(TextId::kTitleNotText);
  if (title.find_first_of(std::string("\r\n\0", 3)) != std::string::npos) {
    return LoadText(TextId::kTitleHasBreak);
  }
  if (TrimBlanks(title).empty()) return LoadText(TextId::kTitleOnlyBlanks);
  if (HasBlankAtAnEnd(title)) return LoadText(TextId::kTitleBlankAtEnd);
  if (title.ends_with(']')) return LoadText(TextId::kTitleEndsInBracket);
  const std::string reserved = LoadText(TextId::kNoProfile);
  if (EqualsIgnoringCase(title, reserved)) return LoadText(TextId::kTitleReserved, {reserved});
  return "";
}

platform::Result ProfileList::Read() {
  std::shared_ptr<const SettingsSnapshot> snapshot;
  platform::Result read = RunSettings(standard_.Folders()).Read(&snapshot);
  rows_.clear();
  searched_.clear();
  expressions_.clear();
  problem_.clear();
  if (read.ok()) TakeRows(*snapshot);
  expressions_.resize(rows_.size());
  TestName(std::string(tested_name_));
  return read;
}

void ProfileList::TakeRows(const SettingsSnapshot& snapshot) {
  for (const std::string& title : snapshot.Titles()) {
    const ProfileValues profile = *snapshot.Profile(title);
    rows_.push_back(RowOf(title, profile));
    if (!problem_.empty()) continue;
    const Reason problem = ProfileProblem(title, snapshot);
    if (!problem.empty())
      problem_ = LoadText(TextId::kProfileUnusable, {ForDisplay(title), LoadText(problem)});
  }
  const platform::ProfileParse& items = snapshot.files().items;
  if (items != nullptr && !items->SectionProblem().empty()) {
    problem_ = LoadText(TextId::kItemsFile) + ": " + LoadText(items->SectionProblem());
  }
}

std::vector<std::size_t> ProfileList::Filtered(const std::string& text) const {
  const std::string wanted = platform::UpperCase(text);
  if (searched_.size() != rows_.size()) {
    searched_.clear();
    searched_.reserve(rows_.size());
    for (const ProfileRow& row : rows_) searched_.push_back(SearchedText(row));
  }
  std::vector<std::size_t> found;
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    if (searched_[i].find(wanted) != std::string::npos) found.push_back(i);
  }
  return found;
}

const Regex& ProfileList::ExpressionOf(std::size_t row) const {
  if (!expressions_[row]) expressions_[row] = ProfileRegex(rows_[row].pattern);
  return *expressions_[row];
}

void ProfileList::TestName(const std::string& name) {
  tested_name_ = name;
  match_count_ = 0;
  ranks_.assign(rows_.size(), 0);
  if (name.empty()) return;
  const std::string subject = MatchSubject(name);
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    if (ExpressionOf(i).MatchWhole(subject) == RegexAnswer::kWhole) ranks_[i] = ++match_count_;
  }
}

// Why a profile does not match is found out for those rows only that are looked at.
NameMatch ProfileList::MatchOf(std::size_t row) const {
  using Kind = NameMatch::Kind;
  if (tested_name_.empty()) return {};
  if (ranks_[row] > 0) return {Kind::kMatches, ranks_[row], ""};
  const std::string subject = MatchSubject(tested_name_);
  const Regex& expression = ExpressionOf(row);
  if (expression.MatchWhole(subject) == RegexAnswer::kError) {
    return {Kind::kError, 0, PatternProblem(rows_[row].pattern, expression)};
  }
  return {expression.MatchesPart(subject) ? Kind::kPartOnly : Kind::kNoMatch, 0, ""};
}

std::vector<std::string> ProfileList::Titles() const {
  std::vector<std::string> titles;
  if (items_.EnumSection(&titles) == 0) titles.clear();
  return titles;
}

platform::Result ProfileList::CheckThere(const std::string& title) const {
  const std::vector<std::string> titles = Titles();
  if (std::find(titles.begin(), titles.end(), title) != titles.end()) return platform::Success();
  return Failure(platform::Code::kNotFound, title, why::kProfileGone);
}

std::string ProfileList::NewTitleProblem(const std::string& title, const std::string& old_title) const {
  if (std::string problem = TitleProblem(title); !problem.empty()) return problem;
  const bool only_respells = !old_title.empty() && EqualsIgnoringCase(title, old_title);
  return !only_respells && Contains(Titles(), title) ? LoadText(TextId::kSameProfileName) : "";
}

std::string ProfileList::TitleForCopy(const std::string& title) const {
  const std::vector<std::string> titles = Titles();
  const std::string base = WithoutNumber(title);
  for (int number = 2;; ++number) {
    std::string copy = std::string(base).append(" (").append(std::to_string(number)).append(")");
    if (!Contains(titles, copy)) return copy;
  }
}

platform::Result ProfileList::Rename(const std::string& title, const std::string& new_title) {
  if (platform::Result there = CheckThere(title); !there.ok()) return there;
  items_.RenameSection(title, new_title);
  return items_.LastFailure().ok() ? Sort() : items_.LastFailure();
}

platform::Result ProfileList::Duplicate(const std::string& title, const std::string& new_title) {
  if (platform::Result there = CheckThere(title); !there.ok()) return there;
  items_.CopySection(title, new_title);
  return items_.LastFailure().ok() ? Sort() : items_.LastFailure();
}

platform::Result ProfileList::Remove(const std::vector<std::string>& titles) {
  const std::unordered_set<std::string> meant(titles.begin(), titles.end());
  std::vector<std::string> doomed;
  for (const std::string& title : Titles()) {
    // One that is spelled another way by now is not the one that the user meant.
    if (meant.contains(title)) doomed.push_back(title);
  }
  items_.DelSections(doomed);
  return items_.LastFailure();
}

platform::Result ProfileList::Sort() {
  items_.OptimizeFile();
  return items_.LastFailure();
}

}  // namespace quendle
