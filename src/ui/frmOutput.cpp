#include "ui/frmOutput.h"
