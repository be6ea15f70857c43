// Showing a folder in the file manager of the user's choice.
#pragma once

#include <string>

#include "base/user_interface.h"
#include "reasons/result.h"
#include "settings/setting_values.h"

namespace quendle {

FileManager FileManagerOf(const SettingsValues& standard);

// Starts the program of `manager` (FILER) with its parameters (FILERPARM), in which "%1" is the folder, without a
// separator behind it; an empty FILERPARM is the folder alone. Where FILER is not set, cannot be found or is not started,
// the desktop's own file manager opens the folder. A folder that does not exist is passed over. A failure says why the
// desktop's file manager did not start.
platform::Result OpenFolderWithFiler(const FileManager& manager, const std::string& folder);

}  // namespace quendle
