// The headers of RAR archives, as far as the libraries leave them to others.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "archive/modules/common/archive_input.h"
#include "archive/modules/common/entry_reader.h"

namespace quendle::modules {

enum class RarVersion { kNone, kRar4, kRar5 };  // kRar4: that and what came before it, from 1.5 on

// What signature stands there?
RarVersion RarVersionAt(const ArchiveInput& input, std::uint64_t position);

// Is it followed by the first block of an archive, whole by its checksum? Reads that block at most.
bool BeginsRar(const ArchiveInput& input, std::uint64_t position);

// A file or folder. Of one that is spread over volumes there is one, with what its parts say together.
struct RarFile {
  std::uint64_t position = 0;  // of its (first) header in the input
  std::uint64_t content_position = 0;
  std::string name;  // raw
  bool is_unicode = false;
  bool encrypted = false;
  bool solid = false;
  bool continued = false;  // from the volume before
  bool continues = false;  // in the next volume
  bool is_folder = false;
  std::uint64_t packed_size = 0;
  std::uint64_t size = 0;
  bool has_size = true;
  std::uint32_t crc = 0;
  bool has_crc = true;
  std::uint8_t host = 0;
  std::uint8_t method = 0;  // '0', stored, to '5'
  std::uint32_t mode = 0;   // attributes by the host
  std::uint32_t dos_time = 0;
  std::int32_t nanoseconds = 0;  // to be added to that
  // RAR 5: the name of the earlier file whose content it has.
  std::optional<std::string> source;
};

struct RarArchive {
  RarVersion version = RarVersion::kNone;
  bool is_volume = false;
  bool is_first = true;  // of the volumes
  bool names_encrypted = false;
  bool has_next = false;       // another volume follows
  std::uint64_t end = 0;       // behind the last block, when all were read
  std::vector<RarFile> files;  // of RAR 5: names, sizes, checksums and sources
  Reason problem;              // why there may be more; empty: these are all
};

// Goes through the headers of one file of a set, between two positions of the input.
RarArchive ReadRarVolume(const ArchiveInput& input, std::uint64_t begin, std::uint64_t end);

// The same for all files of the input together.
RarArchive ReadRarArchive(const ArchiveInput& input);

// All but the target of a link.
Entry ToEntry(const RarFile& file, const std::string& charset);

}  // namespace quendle::modules
