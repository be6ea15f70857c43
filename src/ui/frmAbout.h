// What the program is, and which archiver libraries it has.
#pragma once

#include <QWidget>
#include <string>

namespace quendle {

// Shows it, modal to `owner`. `module_folder` holds the archiver libraries.
void ShowAbout(QWidget* owner, const std::string& module_folder);

}  // namespace quendle
