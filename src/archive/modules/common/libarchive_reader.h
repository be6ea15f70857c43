// Reading by libarchive.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "archive/modules/common/entry_reader.h"

namespace quendle::modules {

enum class LibarchiveFormat { kZip, kSevenZip };

// Completes what libarchive tells of the `index`-th entry (from 0, in the order in which it reads them) from
// the archive's own headers. False: this entry is none of the archive's, and is passed over.
using DescribeEntry = std::function<bool(std::size_t index, Entry* entry)>;

// What the library is shown in place of the archive's bytes from `position` on: a directory, say, in the
// form that it reads best.
struct Ending {
  std::uint64_t position = UINT64_MAX;
  std::string bytes;
};

// "libarchive 3.6.2": the version that is loaded.
std::string LibarchiveVersion();

// Only that format is tried. `describe` may be empty. A library that goes around in circles on damaged input
// is stopped.
std::unique_ptr<EntryReader> OpenLibarchive(const ArchiveInput& input, const ReaderOptions& options,
                                            LibarchiveFormat format, DescribeEntry describe, Reason* reason,
                                            Ending ending = {});

}  // namespace quendle::modules
