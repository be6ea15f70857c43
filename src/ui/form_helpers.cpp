#include "ui/form_helpers.h"
