#include "base/other.h"
