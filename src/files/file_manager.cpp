#include "files/file_manager.h"
