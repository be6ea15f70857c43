// What a 7Z archive says of its headers before they are unpacked.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "archive/modules/common/archive_input.h"

namespace quendle::modules {

constexpr std::string_view kSevenZipSignature{"7z\xBC\xAF\x27\x1C", 6};

// The first 32 bytes, if they stand there and their checksum holds; they place the end header.
struct SevenZipStart {
  std::uint64_t end_offset = 0;  // behind these bytes
  std::uint64_t end_size = 0;
};
std::optional<SevenZipStart> ReadSevenZipStart(const ArchiveInput& input, std::uint64_t position);

// How many bytes the list of entries takes when it is unpacked: as much as the end header itself when that is the list,
// and otherwise what the end header says of the packed list. Nothing when it says nothing that can be read; then no
// library reads it either.
std::optional<std::uint64_t> UnpackedHeadersSize(const ArchiveInput& input);

}  // namespace quendle::modules
