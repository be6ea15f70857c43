#include "platform/running_copy.h"
