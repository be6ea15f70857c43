// What a RAR 5 block says of a file.
#pragma once

#include "archive/modules/rar/rar5_block.h"
#include "archive/modules/rar/rar_headers.h"

namespace quendle::modules {

// False for fields that are cut off.
bool ReadRar5File(const Rar5Block& block, RarFile* file);

}  // namespace quendle::modules
