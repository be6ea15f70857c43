// The section of ELF files that holds a version.
#pragma once

#include <optional>

#include "platform/services/version_record.h"

namespace quendle::platform {

std::optional<VersionNumbers> FindElfVersion(const ReadBytes& read);

}  // namespace quendle::platform
