// Where the windows reach the editor of profiles and settings, and what else comes with it.
#pragma once

#include <QWidget>

#include "settings/clsPropItem.h"

namespace quendle {

// Opens the editor for what EDITMODE, Title and NEWTITLE of the store say, modal to `owner`. True when
// something was saved; NEWTITLE is the title of the profile then.
bool OpenEditor(QWidget* owner, clsPropItem* items);

// Shows what the program is, modal to `owner`.
void ShowAbout(QWidget* owner);

}  // namespace quendle
