// The CAB module.
#include "archive/modules/cab/cab_family.h"
#include "archive/modules/common/exports.h"

QUENDLE_EXPORT_MODULE(Cab, quendle::modules::kCabFamily);
