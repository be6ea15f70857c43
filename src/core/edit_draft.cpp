#include "core/edit_draft.h"
