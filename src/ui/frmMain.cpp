#include "ui/frmMain.h"

namespace quendle {

void RunProfileList(const WindowsHost&) {}

}  // namespace quendle
