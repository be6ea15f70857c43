// The 7Z module.
#include "archive/modules/common/exports.h"
#include "archive/modules/sevenzip/sevenzip_family.h"

QUENDLE_EXPORT_MODULE(SevenZip, quendle::modules::kSevenZipFamily);
