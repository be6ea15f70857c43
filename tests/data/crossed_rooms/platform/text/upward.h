// Runs against the order of the rooms, so that the check is known to notice.
#include "core/top.h"
