// Finding RAR archives, with the other volumes of their sets.
#pragma once

#include <memory>
#include <optional>

#include "archive/modules/common/archive_input.h"

namespace quendle::modules {

// The archive in a file: at its beginning, or behind a program. Of a set of volumes, whichever is given: all from the
// first on, as far as they are there. Nothing: there is none, or the first volume is missing, as `*reason` says then.
std::optional<ArchiveInput> FindRar(std::shared_ptr<const platform::InputFile> file, Reason* reason);

// Names the volume that should follow.
Reason MissingVolume(const ArchiveInput& input);

}  // namespace quendle::modules
