#include "ui/frmMsgBox.h"
