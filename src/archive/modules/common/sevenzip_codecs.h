// Methods that archives use and 7-Zip's library does not know.
#pragma once

#include "archive/modules/common/sevenzip_api.h"

namespace quendle::modules {

// Has `reader` decode Zstandard in 7Z archives, too.
void AddCodecs(sevenzip::InArchive* reader);

}  // namespace quendle::modules
