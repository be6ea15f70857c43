// The RAR module.
#include "archive/modules/common/exports.h"
#include "archive/modules/rar/rar_family.h"

QUENDLE_EXPORT_MODULE(Unrar, quendle::modules::kRarFamily);
