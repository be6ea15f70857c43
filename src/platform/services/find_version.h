// Where the version lies in files of programs and libraries.
#pragma once

#include <optional>
#include <string>

#include "platform/services/version_record.h"

namespace quendle::platform {

// The version in a file of a kind that is known here. Reads only headers and tables, and follows nothing in
// circles, however the file is made.
std::optional<VersionNumbers> FindVersion(const ReadBytes& read);

// The same in the file of that path.
std::optional<VersionNumbers> FindVersionIn(const std::string& path);

}  // namespace quendle::platform
