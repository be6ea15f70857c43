// The texts of Qt's own controls (buttons of dialogs, the menu of a text field) in the language of the program.
#pragma once

#include <QCoreApplication>

namespace quendle {

// Installs them. Qt's own translations are not used, whatever is installed.
void InstallQtTexts(QCoreApplication* application);

}  // namespace quendle
