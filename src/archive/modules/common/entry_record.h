// The record in which a module tells of an entry.
#pragma once

#include <string>

#include "archive/archiver_abi.h"
#include "archive/modules/common/entry_reader.h"

namespace quendle::modules {

// Fills the record. `name` is in the host's encoding; what does not fit of it is left out without cutting a
// character of UTF-8.
void FillRecord(const Entry& entry, const std::string& name, bool utf8, ArchiverEntry* record);

}  // namespace quendle::modules
