#include "ui/qt_texts.h"
