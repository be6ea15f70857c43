#include "ui/frmAction.h"
