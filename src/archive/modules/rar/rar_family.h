// The RAR module's family.
#pragma once

#include "archive/modules/common/family.h"

namespace quendle::modules {

extern const Family kRarFamily;

}  // namespace quendle::modules
