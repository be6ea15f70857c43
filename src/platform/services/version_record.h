// The fixed file information of a version resource, as files of programs and libraries hold it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/services/file_version.h"

namespace quendle::platform {

// In an ELF file the record is the beginning of the section of this name, in the byte order of the file.
#define QUENDLE_VERSION_SECTION ".version_info"
inline constexpr std::string_view kVersionSection = QUENDLE_VERSION_SECTION;

// Thirteen numbers of 32 bits: signature, version of the record itself, file version, product version (each
// the major and minor halves, then those of revision and build), and what says nothing about versions.
using VersionRecord = std::array<std::uint32_t, 13>;
inline constexpr std::uint32_t kVersionSignature = 0xFEEF04BD;

constexpr VersionRecord MakeVersionRecord(const VersionNumbers& version) {
  const std::uint32_t high = std::uint32_t{version[0]} << 16 | version[1];
  const std::uint32_t low = std::uint32_t{version[2]} << 16 | version[3];
  return {kVersionSignature, 0x10000, high, low, high, low};
}

// All bytes from `position` on for `size`, or nothing when the file does not hold them all.
using ReadBytes = std::function<std::optional<std::string>(std::uint64_t position, std::size_t size)>;

enum class ByteOrder { kLittle, kBig };

// The `width` bytes at `position`, which `bytes` has.
std::uint64_t NumberAt(std::string_view bytes, std::size_t position, std::size_t width,
                       ByteOrder order = ByteOrder::kLittle);

// The file version of the record that the bytes begin with; nothing when they begin with none.
std::optional<VersionNumbers> VersionOfRecord(std::string_view bytes, ByteOrder order = ByteOrder::kLittle);

}  // namespace quendle::platform
