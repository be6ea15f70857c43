// The LZH module's family.
#pragma once

#include "archive/modules/common/family.h"

namespace quendle::modules {

extern const Family kLzhFamily;

}  // namespace quendle::modules
