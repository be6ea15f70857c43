// What keeps a profile from being acted on, and what its author should know of it. Empty when there is nothing
// to say.
#pragma once

#include <string>

#include "reasons/reason.h"
#include "settings/run_settings.h"

namespace quendle {

// Why nothing may be done by the profile of that title, which is one of the settings': a value that may have been cut,
// that was saved as UTF-8 but is read as Japanese Windows text, or a folder with control characters in it.
Reason ProfileProblem(const std::string& title, const SettingsSnapshot& settings);

// The same for a folder alone, which a reason calls `name` (why::kFolderOfProfile, say) and which stands in `file`.
Reason FolderProblem(const Reason& name, const std::string& folder, const platform::ProfileParse& file);

// Why a pattern of Include or Exclude cannot be used.
Reason EntryPatternProblem(const ProfileValues& profile);

// Which keys it has that do not count, because its ID is 0.
Reason IdleKeys(const ProfileValues& profile);

// Does the profile of that title count as the same in both? Of an empty title: are the standard and test settings the
// same?
bool SameValues(const SettingsSnapshot& a, const SettingsSnapshot& b, const std::string& title);

}  // namespace quendle
