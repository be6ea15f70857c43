#include "ui/qt_user.h"
