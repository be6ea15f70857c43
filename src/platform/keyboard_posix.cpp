#include "platform/keyboard.h"
