#include "base/reasons.h"
