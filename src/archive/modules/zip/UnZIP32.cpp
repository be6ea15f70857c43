// The ZIP module.
#include "archive/modules/common/exports.h"
#include "archive/modules/zip/zip_family.h"

QUENDLE_EXPORT_MODULE(UnZip, quendle::modules::kZipFamily);
