#include "ui/frmAbout.h"

namespace quendle {

void ShowAbout(QWidget*, const std::string&) {}

}  // namespace quendle
