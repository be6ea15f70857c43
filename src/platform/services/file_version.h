// The version that a program or library carries.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace quendle::platform {

// Most significant first.
using VersionNumbers = std::array<std::uint16_t, 4>;

// The file version of the fixed file information in a Windows file's version resource (of 32 and 64 bits) or
// in the section kVersionSection of an ELF file (platform/services/version_record.h), whatever the system here.
// Nothing when there is none, or the file is missing, damaged or cannot be read.
std::optional<VersionNumbers> ReadFileVersion(const std::string& path);

}  // namespace quendle::platform
