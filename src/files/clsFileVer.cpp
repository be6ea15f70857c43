#include "files/clsFileVer.h"
