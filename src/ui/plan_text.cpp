#include "ui/plan_text.h"
