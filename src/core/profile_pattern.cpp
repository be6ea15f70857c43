#include "core/profile_pattern.h"
