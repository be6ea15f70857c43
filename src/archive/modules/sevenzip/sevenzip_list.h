// The list of entries of a 7Z archive, looked at before a library makes entries of it.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "archive/modules/common/archive_input.h"
#include "archive/modules/common/entry_reader.h"

namespace quendle::modules {

// May the list be given to 7-Zip's library? That unpacks a list which turns out to describe another packed list, too, and
// so on; and an entry without a name and content takes a bit of a list, packed next to nothing, and more than 20 bytes of
// memory. So the list is unpacked and looked at first. `password` as in ReaderOptions. `*reason` tells why not kOk:
// kTooManyEntries beyond kMostEntries.
ReadStatus CheckSevenZipList(const ArchiveInput& input,
                             const std::function<std::optional<std::string>()>& password, Reason* reason);

}  // namespace quendle::modules
