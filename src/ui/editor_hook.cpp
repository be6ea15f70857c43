#include "ui/editor_hook.h"
