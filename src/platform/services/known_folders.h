// Folders and facts that the system or the user's session provides. Paths are absolute, without a trailing
// separator (except a root), empty when the system has none.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace quendle::platform {

std::string ExecutableFolder();
// The file of this program, in that folder.
std::string ExecutablePath();
std::string TemporaryFolder();

// Where users put libraries that programs look for by their names, the first ones first. Windows: the program's own folder and
// the system's. POSIX: none; such libraries come with a program.
std::vector<std::string> LibraryFolders();

// For small files that are gone with the session, in memory as a rule: $XDG_RUNTIME_DIR. Empty where a session
// has none, as on Windows.
std::string RuntimeFolder();

// Where a user's programs keep their settings: $XDG_CONFIG_HOME, else ~/.config. A relative value counts as
// none. Windows: the roaming application data.
std::string SettingsRoot();

// Where a user's programs keep what they remember and nobody sets: $XDG_STATE_HOME, else ~/.local/state. A
// relative value counts as none. Windows: the local application data.
std::string StateFolder();

// The user's download folder: XDG_DOWNLOAD_DIR of user-dirs.dirs, else ~/Downloads, else the home folder.
// Windows: wherever the user has moved it.
std::string DownloadFolder();

}  // namespace quendle::platform
