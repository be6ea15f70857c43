#include "core/profile_list.h"
