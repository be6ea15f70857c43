// Reading RAR archives by unarr.
#pragma once

#include "archive/modules/common/entry_reader.h"

namespace quendle::modules {

// Not every build has it.
bool HasUnarr();

// ", libunarr 1.0.1", to be put behind the versions of others; empty in a build without it.
std::string AndUnarrVersion();

// Completes what unarr tells of an entry from the archive's own header at `offset`, as ar_entry_get_offset
// gives it. False: the entry cannot be read.
using DescribeUnarrEntry = std::function<bool(std::uint64_t offset, Entry* entry)>;

// unarr reads only whole files and memory, so that an input that begins inside a file is read into memory
// first, up to a limit. Several volumes are refused. Folders are passed over without a word, so that a family
// that wants them takes them from the archive's own headers.
std::unique_ptr<EntryReader> OpenUnarr(const ArchiveInput& input, DescribeUnarrEntry describe,
                                       Reason* reason);

}  // namespace quendle::modules
