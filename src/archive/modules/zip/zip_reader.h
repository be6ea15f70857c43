// Reading ZIP archives: the directory says what there is, libarchive unpacks it.
#pragma once

#include <memory>
#include <string>

#include "archive/modules/common/entry_reader.h"
#include "archive/modules/zip/zip_directory.h"

namespace quendle::modules {

// Damage to one entry leaves the others readable. Volumes and positions are as the directory counts them.
std::unique_ptr<EntryReader> OpenZip(const ArchiveInput& input, const ReaderOptions& options, Reason* reason);

// The same with the directory as ReadZipDirectory has read it.
std::unique_ptr<EntryReader> OpenZipBy(ZipDirectory directory, const ArchiveInput& input,
                                       const ReaderOptions& options);

}  // namespace quendle::modules
