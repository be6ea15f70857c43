#include "ui/frmOverwrite.h"
