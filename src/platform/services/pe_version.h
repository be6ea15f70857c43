// The version resource of Windows files.
#pragma once

#include <optional>

#include "platform/services/version_record.h"

namespace quendle::platform {

std::optional<VersionNumbers> FindPeVersion(const ReadBytes& read);

}  // namespace quendle::platform
