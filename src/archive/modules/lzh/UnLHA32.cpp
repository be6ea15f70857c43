// The LZH module.
#include "archive/modules/common/exports.h"
#include "archive/modules/lzh/lzh_family.h"

QUENDLE_EXPORT_MODULE(Unlha, quendle::modules::kLzhFamily);
