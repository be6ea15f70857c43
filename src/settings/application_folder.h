// Which folder holds mover.ini, items.ini and test.ini.
#pragma once

#include <string>

#include "settings/clsPropDefault.h"

namespace quendle {

// The first of these that applies:
//   1. `chosen`, the folder given on the command line, when not empty;
//   2. the environment variable QUENDLE_HOME;
//   3. the executable's folder, when it holds mover.ini: a portable installation;
//   4. "quendle" in the user's folder for settings ($XDG_CONFIG_HOME, else ~/.config).
// Unset destinations are the application folder itself, but in the last case the user's download folder: a
// hidden folder of settings is no place for files. Nothing is created here.
SettingsFolders FindSettingsFolders(const std::string& chosen);

}  // namespace quendle
