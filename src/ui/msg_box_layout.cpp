#include "ui/msg_box_layout.h"
