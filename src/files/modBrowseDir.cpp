#include "files/modBrowseDir.h"
