// The editor of one profile, of the standard and test settings, and of the general settings.
#pragma once

#include <QWidget>

#include "core/modMain.h"

namespace quendle {

// Opens the editor for what EDITMODE, Title and NEWTITLE of the profile store say, modal to `owner`:
//   1 the profile Title    2 a new profile NEWTITLE    0 standard settings    4 general settings    6 test settings
// True when something was saved; NEWTITLE is the title of the profile then. EDITMODE is 0 afterwards.
bool OpenEditor(QWidget* owner, Globals& globals);

}  // namespace quendle
