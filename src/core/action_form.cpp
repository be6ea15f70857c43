#include "core/action_form.h"
