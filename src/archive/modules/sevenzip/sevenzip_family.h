// The 7Z module's family.
#pragma once

#include "archive/modules/common/family.h"

namespace quendle::modules {

extern const Family kSevenZipFamily;

}  // namespace quendle::modules
