// The ZIP module's family.
#pragma once

#include "archive/modules/common/family.h"

namespace quendle::modules {

extern const Family kZipFamily;

}  // namespace quendle::modules
