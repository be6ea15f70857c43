// What the headers of RAR archives say, of all generations alike.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "archive/modules/common/archive_input.h"
#include "archive/modules/common/entry_reader.h"
#include "archive/modules/rar/rar_keys.h"

namespace quendle::modules {

enum class RarVersion { kNone, kRar13, kRar4, kRar5 };  // kRar4: from 1.5 on; kRar5: 7 too

// What signature stands there?
RarVersion RarVersionAt(const ArchiveInput& input, std::uint64_t position);

// Is it followed by the first block of an archive, whole by its checksum? Reads that block at most.
bool BeginsRar(const ArchiveInput& input, std::uint64_t position);

// The way in which the bytes of an entry are packed, by the first version of RAR that had it.
enum class RarPacking { kStored, k15, k20, k29, k50, kUnknown };

// Bytes of an entry in one volume.
struct RarPart {
  std::uint64_t position = 0;
  std::uint64_t size = 0;
  std::optional<std::uint32_t> crc = {};  // of these bytes as they stand; all parts but the last have it
};

// An entry. Of one that is spread over volumes there is one, with what its parts say together.
struct RarFile {
  std::uint64_t window = 0;           // bytes
  std::optional<std::uint64_t> size;  // unpacked; none: nobody knew when it was packed
  std::vector<RarPart> parts;
  std::string name;         // raw
  std::string link_target;  // UTF-8; empty: it is the content
  platform::EntryAttributes attributes;
  std::string blake2sp;               // 32 bytes, or empty
  std::string method;                 // in words
  std::optional<std::string> source;  // raw name of the earlier file whose content it has
  std::optional<RarEncryption> encryption;
  EntryKind kind = EntryKind::kFile;
  RarPacking packing = RarPacking::kUnknown;
  std::optional<std::uint32_t> crc;  // of the content
  bool is_unicode = false;           // the name
  bool continued = false;            // its beginning is in a volume before the first of these
  bool continues = false;            // ... its end behind the last
  bool is_rotating_sum = false;      // the checksum, as before RAR 1.5
  bool is_solid = false;             // it goes on with what the entry before it left
  bool has_far_distances = false;    // of RAR 7

  // Is there something to unpack, on which solid files go on?
  bool IsPacked() const {
    const bool has_content = (kind == EntryKind::kFile || kind == EntryKind::kLink) && !source;
    return has_content && packing != RarPacking::kStored && (size != 0U || PackedSize() > 0);
  }

  std::uint64_t PackedSize() const {
    std::uint64_t sum = 0;
    for (const RarPart& part : parts) sum += part.size;
    return sum;
  }
};

// Beyond what anybody packs.
inline constexpr std::size_t kMostRarFiles = 1'000'000;

struct RarArchive {
  RarVersion version = RarVersion::kNone;
  bool is_volume = false;
  bool is_first = true;                 // of the volumes, as far as it says so
  std::optional<std::uint64_t> number;  // of the volume, from 0, if it says so
  bool is_encrypted = false;            // the list of entries, too
  bool has_next = false;                // another volume follows
  std::uint64_t end = 0;                // behind the last block, when all were read
  std::vector<RarFile> files;
  Reason problem;                        // why there may be more; empty: these are all
  ReadStatus status = ReadStatus::kEnd;  // what kind of problem that is
};

// Goes through the headers of one file of a set, between two positions of the input. Null `keys`: encrypted ones
// are left alone, and are no problem.
RarArchive ReadRarVolume(const ArchiveInput& input, std::uint64_t begin, std::uint64_t end, RarKeys* keys);

// The same for all files of the input together, as far as each says that there is a next one.
RarArchive ReadRarArchive(const ArchiveInput& input, RarKeys* keys);

// All but a link's target that is its content.
Entry ToEntry(const RarFile& file, const std::string& charset);

}  // namespace quendle::modules
