// The central directory of a ZIP archive: what is in it and where.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "archive/modules/common/archive_input.h"
#include "archive/modules/common/entry_reader.h"
#include "reasons/result.h"

namespace quendle::modules {

struct ZipEntry {
  std::string name;      // raw
  bool is_utf8 = false;  // the name
  std::uint16_t made_by = 0;
  std::uint16_t flags = 0;
  std::uint16_t method = 0;
  std::uint16_t packed_method = 0;  // as the headers have it: 99 for any method that is encrypted by AES
  std::uint32_t dos_time = 0;
  std::uint32_t crc = 0;
  std::uint64_t packed_size = 0;
  std::uint64_t size = 0;
  std::uint32_t external_attributes = 0;
  std::uint64_t position = 0;            // of the local header in the input
  std::uint64_t directory_position = 0;  // of the header in the directory
  std::optional<platform::EntryTime> time;

  bool IsEncrypted() const { return (flags & 1U) != 0; }
};

struct ZipDirectory {
  std::uint64_t position = 0;
  std::vector<ZipEntry> entries;  // by the positions of their local headers
};

// Reads the directory of an archive that begins where the input does. Failures have the path of the archive.
platform::Result ReadZipDirectory(const ArchiveInput& input, ZipDirectory* directory);

// Refused when entries share bytes with each other or with the directory: such an archive unpacks to more than
// it can hold.
platform::Result CheckZipLayout(const ArchiveInput& input, const ZipDirectory& directory);

// All but the target of a link.
Entry ToEntry(const ZipEntry& zip, const std::string& charset);

}  // namespace quendle::modules
