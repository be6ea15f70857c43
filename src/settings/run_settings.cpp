#include "settings/run_settings.h"

#include <unordered_set>
#include <utility>

#include "base/modString.h"
#include "base/modSystem.h"
#include "base/text.h"
#include "platform/text/code_page.h"
#include "platform/text/unicode.h"
#include "resources/string_table.h"
#include "settings/clsIniFile.h"

namespace quendle {
namespace {

using platform::ProfileKeys;
using platform::ProfileParse;
using platform::Result;

constexpr char AsciiUpper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

SettingsValues GeneralValues(const ProfileParse& parse, const std::string& default_destination) {
  const auto stored = [parse](TextId name) -> std::string {
    if (parse == nullptr) return "";
    return AsRead(parse->FindValue(LoadText(TextId::kGeneral), LoadText(name)).value_or(""));
  };
  return {stored, default_destination};
}

// Nearly all keys are ASCII, and a list of profiles looks at a hundred thousand of them.
bool IsKey(std::string_view key, std::string_view name) {
  bool is_equal = key.size() == name.size();
  for (std::size_t i = 0; i < key.size(); ++i) {
    if (static_cast<signed char>(key[i]) < 0) return platform::UpperCase(key) == platform::UpperCase(name);
    is_equal = is_equal && AsciiUpper(key[i]) == AsciiUpper(name[i]);
  }
  return is_equal;
}

// Of keys of one name the first counts.
std::string_view FirstValue(const ProfileKeys& keys, std::string_view name) {
  for (const auto& [key, value] : keys) {
    if (IsKey(key, name)) return value;
  }
  return "";
}

}  // namespace

SettingsSnapshot::SettingsSnapshot(Files files, const std::string& default_destination)
    : files_(std::move(files)),
      standard_(GeneralValues(files_.standard, default_destination)),
      test_(GeneralValues(files_.test, default_destination)) {
  if (files_.items == nullptr) return;
  titles_ = SectionNames(files_.items->text());
  SortStrings(&titles_, 0, static_cast<std::int32_t>(titles_.size()) - 1);
  std::vector<std::string> unique;
  for (std::string& title : titles_) {
    if (title.empty()) continue;
    if (profiles_.try_emplace(platform::UpperCase(title)).second) {
      unique.push_back(std::move(title));
    } else if (repeated_titles_.empty() || !EqualsIgnoringCase(repeated_titles_.back(), title)) {
      repeated_titles_.push_back(std::move(title));
    }
  }
  titles_ = std::move(unique);
  std::unordered_set<const ProfileKeys*> read;
  files_.items->VisitSections([&](std::string_view name, const ProfileKeys& keys) {
    const auto place = profiles_.find(platform::UpperCase(name));
    if (place != profiles_.end() && read.insert(&place->second).second) place->second = keys;
  });
}

std::optional<ProfileValues> SettingsSnapshot::Profile(const std::string& title) const {
  const auto found = profiles_.find(platform::UpperCase(title));
  if (found == profiles_.end()) return std::nullopt;
  const auto stored = [keys = &found->second](TextId name) {
    return AsRead(FirstValue(*keys, LoadText(name)));
  };
  return ProfileValues(stored, standard_);
}

RunSettings::RunSettings(const SettingsFolders& folders) : default_destination_(folders.default_destination) {
  const std::string prefix = AddBackslash(folders.application);
  const std::string general = LoadText(TextId::kGeneral);
  standard_ = {prefix + LoadText(TextId::kStandardFile), general, false, nullptr};
  test_ = {prefix + LoadText(TextId::kTestFile), general, false, nullptr};
  items_ = {prefix + LoadText(TextId::kItemsFile), "", false, nullptr};
}

// Nothing is done by text that may be somebody else's.
Result RunSettings::ReadText(const std::string& file, ProfileParse* parse) {
  Result read = platform::ReadProfile(file, parse);
  if (!read.ok() || *parse == nullptr || (*parse)->DecodingProblem().empty()) return read;
  return Failure(platform::Code::kFailed, file, (*parse)->DecodingProblem());
}

Result RunSettings::ReadFile(File* file, ProfileParse* parse) {
  if (Result read = ReadText(file->path, parse); !read.ok()) return read;
  if (*parse != nullptr && *parse == file->parse) return platform::Success();
  const bool has_section =
      *parse != nullptr &&
      (file->section.empty() ? !SectionNames((*parse)->text()).empty() : (*parse)->HasSection(file->section));
  if (file->had_section && !has_section) {
    return Failure(platform::Code::kFailed, file->path,
                   file->section.empty() ? why::kProfilesGone : why::kGeneralGone);
  }
  file->had_section = has_section;
  file->parse = *parse;
  return platform::Success();
}

Result RunSettings::Read(std::shared_ptr<const SettingsSnapshot>* snapshot) {
  SettingsSnapshot::Files files;
  Result read = ReadFile(&standard_, &files.standard);
  if (read.ok()) read = ReadFile(&test_, &files.test);
  if (read.ok()) read = ReadFile(&items_, &files.items);
  if (!read.ok()) return read;
  if (last_ == nullptr || last_->files() != files) {
    last_ = std::make_shared<const SettingsSnapshot>(std::move(files), default_destination_);
  }
  *snapshot = last_;
  return platform::Success();
}

}  // namespace quendle
