// Reading by libarchive.
#pragma once

#include "archive/modules/common/entry_reader.h"

namespace quendle::modules {

enum class LibarchiveFormat { kZip, kSevenZip, kRar, kRar5, kLzh };

// Completes what libarchive tells of the `index`-th entry (from 0, in the order in which it reads them) from the
// archive's own headers. False: this entry is none of the archive's, and is passed over.
using DescribeEntry = std::function<bool(std::size_t index, Entry* entry)>;

// Only that format is tried. `describe` may be empty. A library that goes around in circles on damaged input is
// stopped.
std::unique_ptr<EntryReader> OpenLibarchive(const ArchiveInput& input, const ReaderOptions& options,
                                            LibarchiveFormat format, DescribeEntry describe,
                                            std::string* reason);

}  // namespace quendle::modules
