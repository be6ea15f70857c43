// The CAB module.
#include "archive/modules/common/exports.h"
#include "archive/modules/cab/cab_family.h"

QUENDLE_EXPORT_MODULE(Cab, quendle::modules::kCabFamily);
