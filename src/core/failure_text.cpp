#include "core/failure_text.h"
