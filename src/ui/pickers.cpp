#include "ui/pickers.h"
