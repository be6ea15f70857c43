#include "ui/modMsgBox.h"
