// Which folder holds mover.ini, items.ini and test.ini.
#pragma once

#include <string>

#include "settings/clsPropDefault.h"

namespace quendle {

// The first of these that applies:
//   1. `chosen`, the folder given on the command line, when not empty;
//   2. the environment variable QUENDLE_HOME;
//   3. the executable's folder, when it holds mover.ini, or nobody can tell: a portable installation;
//   4. "quendle" in the user's folder for settings ($XDG_CONFIG_HOME, else ~/.config).
// Unset destinations are the application folder itself, but in the last case the user's download folder: a
// hidden folder of settings is no place for files. Nothing is created here.
SettingsFolders FindSettingsFolders(const std::string& chosen);

// Why a folder that was given on the command line is not taken: something else has its place, or it would have to be made
// together with the one above, so that it was probably not meant.
platform::Result CheckChosenFolder(const std::string& chosen);

}  // namespace quendle
