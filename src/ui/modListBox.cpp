#include "ui/modListBox.h"
