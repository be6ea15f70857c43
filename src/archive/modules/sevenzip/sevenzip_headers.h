// What a 7Z archive says of its headers before they are unpacked.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "archive/modules/common/archive_input.h"

namespace quendle::modules {

constexpr std::string_view kSevenZipSignature{"7z\xBC\xAF\x27\x1C", 6};

inline constexpr std::size_t kSevenZipStartSize = 32;

// The first bytes, if they stand there and their checksum holds; they place the end header.
struct SevenZipStart {
  std::uint64_t end_offset = 0;  // from the first of these bytes on
  std::uint64_t end_size = 0;
};
std::optional<SevenZipStart> ReadSevenZipStart(const ArchiveInput& input, std::uint64_t position);

// The list of entries: the end header itself, or packed data that the end header describes.
struct SevenZipList {
  SevenZipStart start;
  std::string description;        // as in the end header, without its mark; empty: the end header is the list
  std::uint64_t packed_size = 0;  // of the data beside the end header
  std::uint64_t unpacked_size = 0;  // of the list
};
// Nothing when the end header says nothing that can be read.
std::optional<SevenZipList> FindSevenZipList(const ArchiveInput& input);

// Is it a list, and not the description of yet another packed one?
bool IsSevenZipList(std::string_view bytes);

// The number of entries that a list says there are, which may be any. Nothing when it cannot be read.
std::optional<std::uint64_t> CountEntries(std::string_view list);

}  // namespace quendle::modules
