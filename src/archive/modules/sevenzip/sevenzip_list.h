// The list of entries of a 7Z archive, looked at before a library makes entries of it.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "archive/modules/common/archive_input.h"
#include "archive/modules/common/entry_reader.h"
#include "archive/modules/common/sevenzip_archive.h"

namespace quendle::modules {

// May the list be given to 7-Zip's library? That unpacks a list which turns out to describe another packed list, too, and
// so on; and an entry without a name and content takes a bit of a list, packed next to nothing, and more than 20 bytes of
// memory. So the list is unpacked and looked at first. `password` as in ReaderOptions. `*reason` tells why not kOk:
// kTooManyEntries beyond kMostEntries. `*bytes` become the archive as if its list had not been packed, which the library
// need not unpack again then; `input` outlives them. They stay as they are where it is not packed.
ReadStatus CheckSevenZipList(const ArchiveInput& input,
                             const std::function<std::optional<std::string>()>& password,
                             SevenZipBytes* bytes, Reason* reason);

}  // namespace quendle::modules
