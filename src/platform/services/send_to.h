// The menus of file managers from which files are sent to a program, each for this user alone.
//
// POSIX, below $XDG_DATA_HOME or ~/.local/share: a desktop entry that offers the program for archives, and the "send to" entries
// of Thunar and Dolphin. Windows: a shortcut in the SendTo folder.
#pragma once

#include <string>

#include "reasons/result.h"

namespace quendle::platform {

// `program` is the full path of this program.

// Do all of those entries start that program?
bool IsInSendTo(const std::string& program);

// Makes the entries, or leads them here from another place of this program. kExists when something else has the name of one:
// that is left as it is. After a failure those that could be made are there.
Result AddToSendTo(const std::string& program);

// Removes the entries of this program, wherever they lead; what else has their names stays. None is a success, too.
Result RemoveFromSendTo();

}  // namespace quendle::platform
