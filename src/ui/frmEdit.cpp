#include "ui/frmEdit.h"

namespace quendle {

bool OpenEditor(QWidget*, Globals&) {
  return false;
}

}  // namespace quendle
