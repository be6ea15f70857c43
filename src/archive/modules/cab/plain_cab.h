// Reading plain cabinets, on all cores where they have several folders.
#pragma once

#include <memory>

#include "archive/modules/cab/cab_directory.h"
#include "archive/modules/common/entry_reader.h"

namespace quendle::modules {

// What the format leaves open, such as small blocks in the middle, is failure here, so that libmspack has its say.
std::unique_ptr<ArchiveReader> OpenPlainCab(const ArchiveInput& input,
                                            std::shared_ptr<const CabDirectory> directory,
                                            const ReaderOptions& options);

}  // namespace quendle::modules
