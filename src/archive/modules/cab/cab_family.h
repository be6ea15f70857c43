// The CAB module's family.
#pragma once

#include "archive/modules/common/family.h"

namespace quendle::modules {

extern const Family kCabFamily;

}  // namespace quendle::modules
