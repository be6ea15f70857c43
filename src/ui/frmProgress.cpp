#include "ui/frmProgress.h"
