#include "core/profile_problem.h"

#include <algorithm>

#include "archive/extraction_list.h"
#include "base/text.h"
#include "platform/text/misread_utf8.h"
#include "resources/string_table.h"
#include "settings/action_steps.h"
#include "settings/clsIniFile.h"

namespace quendle {
namespace {

using Kind = SettingKey::Kind;

bool HasControlCharacter(const std::string& text) {
  return std::any_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; });
}

// With a mark a file is what it says it is.
bool IsMisread(const std::string& text, const platform::ProfileParse& file) {
  return file != nullptr && file->IsAnsi() && platform::LooksLikeMisreadUtf8(text);
}

}  // namespace

Reason FolderProblem(const Reason& name, const std::string& folder, const platform::ProfileParse& file) {
  if (MayBeCut(folder)) return why::kValueMayBeCut(name);
  if (HasControlCharacter(folder)) return why::kControlCharacter(name);
  return IsMisread(folder, file) ? why::kMisread(name) : Reason();
}

Reason ProfileProblem(const std::string& title, const SettingsSnapshot& settings) {
  const ProfileValues profile = *settings.Profile(title);
  const SettingsSnapshot::Files& files = settings.files();
  if (IsMisread(title, files.items)) return why::kMisread(why::kItsTitle);
  for (const SettingKey& key : SettingKeys()) {
    if (!key.IsIn(SettingsFile::kProfile) || key.kind == Kind::kFlag || key.kind == Kind::kNumber) continue;
    const std::string text = profile.Text(key.name);
    const platform::ProfileParse& file = profile.IsInherited(key.name) ? files.standard : files.items;
    if (key.kind == Kind::kFolder) {
      if (Reason problem = FolderProblem(why::kFolderOfProfile, text, file); !problem.empty()) return problem;
    } else if (IsMisread(text, file)) {
      return why::kMisread(why::kItsValue(LoadText(key.name)));
    }
  }
  const bool extracts = Includes(profile.Number(TextId::kAction), StepKind::kExtract);
  if (extracts && (MayBeCut(profile.Text(TextId::kInclude)) || MayBeCut(profile.Text(TextId::kExclude)))) {
    return why::kEntryPatternsMayBeCut;
  }
  return {};
}

Reason EntryPatternProblem(const ProfileValues& profile) {
  return EntryFilter(profile.Text(TextId::kInclude), profile.Text(TextId::kExclude)).Problem();
}

Reason IdleKeys(const ProfileValues& profile) {
  if (profile.Flag(TextId::kId)) return {};
  std::string names;
  for (const SettingKey& key : SettingKeys()) {
    if (key.inherited != SettingKey::Inherited::kWithoutId || profile.Stored(key.name).empty()) continue;
    names += (names.empty() ? "" : ", ") + LoadText(key.name);
  }
  return names.empty() ? Reason() : why::kIdleKeys(names);
}

bool SameValues(const SettingsSnapshot& a, const SettingsSnapshot& b, const std::string& title) {
  if (title.empty()) return a.files().standard == b.files().standard && a.files().test == b.files().test;
  const std::optional<ProfileValues> before = a.Profile(title);
  const std::optional<ProfileValues> now = b.Profile(title);
  if (!before || !now) return false;
  const auto keys = SettingKeys();
  return std::all_of(keys.begin(), keys.end(), [&](const SettingKey& key) {
    if (!key.IsIn(SettingsFile::kProfile)) return true;
    const bool is_number = key.kind == Kind::kFlag || key.kind == Kind::kNumber;
    return is_number ? before->Number(key.name) == now->Number(key.name)
                     : before->Text(key.name) == now->Text(key.name);
  });
}

}  // namespace quendle
