#include "base/pair.h"
