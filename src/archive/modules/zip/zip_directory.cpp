#include "archive/modules/zip/zip_directory.h"

#include <algorithm>
#include <string_view>
#include <tuple>

#include "archive/modules/common/little_endian.h"
#include "archive/modules/zip/zip_end.h"
#include "archive/modules/zip/zip_recovery.h"

namespace quendle::modules {
namespace {

using platform::Code;

constexpr std::size_t kHeadersBlock = 64U << 10;
constexpr std::size_t kLocalHeaderBlock = 4U << 10;  // contents stand between them

platform::Result Damaged(const ArchiveInput& input, const Reason& reason) {
  return Failure(Code::kFailed, input.Path(), reason);
}

// The position in the input; kNowhere when it is outside.
std::uint64_t PositionOf(const ArchiveInput& input, const ZipPlace& place) {
  if (place.volume >= input.VolumeCount() || place.offset >= input.Size()) return kNowhere;
  const std::uint64_t position = input.VolumeStart(static_cast<std::size_t>(place.volume)) + place.offset;
  return position < input.Size() ? position : kNowhere;
}

void SortByPosition(std::vector<ZipEntry>* entries) {
  std::sort(entries->begin(), entries->end(), [](const ZipEntry& a, const ZipEntry& b) {
    return std::tie(a.position, a.directory_position) < std::tie(b.position, b.directory_position);
  });
}

// Positions that all lead past the local headers by as much as the directory itself is misplaced.
void Shift(ZipBytes* bytes, std::int64_t shift, std::vector<ZipEntry>* entries) {
  if (shift == 0 || entries->empty()) return;
  const auto is_header = [bytes](std::uint64_t position) {
    return LocalHeaderSize(bytes->At(position, kLocalHeaderSize)) > 0;
  };
  const std::uint64_t first = entries->front().position;
  if (is_header(first) || !is_header(first + static_cast<std::uint64_t>(shift))) return;
  for (ZipEntry& entry : *entries) entry.position += static_cast<std::uint64_t>(shift);
}

platform::Result ReadCounted(const ArchiveInput& input, const ZipEnd& end, ZipDirectory* directory) {
  directory->position = end.directory;
  directory->entries.reserve(static_cast<std::size_t>(
      std::min({end.entries, end.directory_size / kDirectoryHeaderSize, kMostZipMemory / sizeof(ZipEntry)})));
  std::uint64_t behind = 0;
  platform::Result result =
      ReadZipHeaders(input, end.directory, end.directory + end.directory_size, &directory->entries, &behind);
  const std::uint64_t count = directory->entries.size();
  if (result.ok() && (end.counts_modulo_65536 ? count % 65536 : count) != end.entries) {
    return Damaged(input, why::kDirectoryCount(count, end.entries));
  }
  return result;
}

// Do the entries have bytes of their own? `*is_doubtful` says whether positions may be wrong: entries share bytes,
// or one lacks its local header.
platform::Result CheckLayout(const ArchiveInput& input, const ZipDirectory& directory, bool* is_doubtful) {
  ZipBytes bytes(input, kLocalHeaderBlock);
  std::uint64_t free = 0;  // nothing has used the bytes from here on
  for (const ZipEntry& entry : directory.entries) {
    if (entry.position >= input.Size()) return Damaged(input, why::kDirectoryMisleads);
    std::uint64_t header = LocalHeaderSize(bytes.At(entry.position, kLocalHeaderSize));
    if (!bytes.result().ok()) return bytes.result();
    if (header == 0) {
      *is_doubtful = true;
      header = kLocalHeaderSize + entry.name.size();
    }
    const std::uint64_t begin = entry.position + header;
    if (entry.position < free || begin > directory.position ||
        entry.packed_size > directory.position - begin) {
      *is_doubtful = true;
      return Failure(Code::kRefused, input.Path(), why::kSharedBytes);
    }
    free = begin + entry.packed_size;
  }
  return platform::Success();
}

// What the end record leads to, if that is a directory of this archive.
platform::Result ReadByEnd(const ArchiveInput& input, const platform::Result& found, const ZipEnd& end,
                           ZipDirectory* directory, bool* is_doubtful) {
  *directory = {};
  if (!found.ok()) return found;
  if (end.is_misplaced) return Damaged(input, why::kDirectoryMissing);
  platform::Result result = ReadCounted(input, end, directory);
  if (!result.ok()) return result;
  SortByPosition(&directory->entries);
  ZipBytes bytes(input, kLocalHeaderBlock);
  Shift(&bytes, end.shift, &directory->entries);
  return CheckLayout(input, *directory, is_doubtful);
}

}  // namespace

std::uint64_t MemoryOf(const ZipEntry& entry) {
  return sizeof(ZipEntry) + entry.name.size() + entry.unicode_name.size();
}

platform::Result ReadZipHeaders(const ArchiveInput& input, std::uint64_t begin, std::uint64_t end,
                                std::vector<ZipEntry>* entries, std::uint64_t* behind) {
  ZipBytes bytes(input, kHeadersBlock);
  std::uint64_t memory = 0;
  *behind = begin;
  while (*behind < end && bytes.At(*behind, 4) == "PK\1\2") {
    const std::size_t size = DirectoryHeaderSize(bytes.At(*behind, kDirectoryHeaderSize));
    const std::string_view header = bytes.At(*behind, size);
    if (size == 0 || header.size() < size || size > end - *behind) {
      return Damaged(input, why::kDirectoryCutOff);
    }
    ZipEntry& entry = entries->emplace_back();
    ZipPlace place;
    const bool has_all = ParseDirectoryHeader(header, &entry, &place);
    entry.position = has_all ? PositionOf(input, place) : kNowhere;
    entry.directory_position = *behind;
    *behind += size;
    memory += MemoryOf(entry);
    if (memory > kMostZipMemory) return Failure(Code::kRefused, input.Path(), why::kDirectoryTooLarge);
  }
  return bytes.result();
}

platform::Result ReadZipDirectory(const ArchiveInput& input, ZipDirectory* directory) {
  ZipEnd end;
  platform::Result found = FindZipEnd(input, &end);
  if (end.volumes > input.VolumeCount()) return found;
  bool is_doubtful = false;
  platform::Result read = ReadByEnd(input, found, end, directory, &is_doubtful);
  if (!is_doubtful && (read.ok() || read.code == Code::kRefused)) return read;

  *directory = {};  // memory for one is enough
  ZipDirectory walked;
  const bool has_entries = WalkLocalHeaders(input, &walked).ok() && !walked.entries.empty();
  std::uint64_t behind = 0;
  const bool agrees = has_entries && TakeDirectoryBehind(input, &walked, &behind);
  if (!agrees && read.ok()) return ReadByEnd(input, found, end, directory, &is_doubtful);
  if (!agrees && (!has_entries || read.code == Code::kRefused)) return read;
  if (!agrees) walked.problem = why::kFoundByHeaders(read.reason, walked.entries.size());
  if (agrees && found.ok() && end.directory > behind) walked.problem = why::kArchiveBehind;
  SortByPosition(&walked.entries);
  *directory = std::move(walked);
  return platform::Success();
}

std::optional<Reason> WhyNotHeaderOf(const ZipEntry& entry, std::string_view local) {
  if (LocalHeaderSize(local) == 0) return why::kHeaderMissing;
  const std::uint64_t crc = LittleEndian(local, 14, 4);
  if (crc != 0 && crc != entry.crc) return why::kChecksumsDiffer;
  // Where a descriptor has the checksum, a header of the directory that was overwritten by zeros is one of an empty file.
  const bool is_other = entry.crc == 0 && !HasMethodOf(entry, local);
  if (is_other && !entry.HasMaskedHeader()) return why::kHeadersDamaged;
  return std::nullopt;
}

bool HasMethodOf(const ZipEntry& entry, std::string_view local) {
  return LittleEndian(local, 8, 2) == entry.packed_method;
}

platform::Result CheckLocalHeader(const ArchiveInput& input, const ZipEntry& entry, std::uint64_t* content) {
  std::string header(kLocalHeaderSize, '\0');
  std::size_t got = 0;
  platform::Result result = input.ReadAt(entry.position, header.data(), header.size(), &got);
  if (!result.ok()) return result;
  header.resize(got);
  if (const auto reason = WhyNotHeaderOf(entry, header)) return Failure(Code::kFailed, input.Path(), *reason);
  *content = entry.position + LocalHeaderSize(header);
  return platform::Success();
}

bool LocalHeadersAgree(const ArchiveInput& input, const ZipDirectory& directory) {
  ZipBytes bytes(input, kLocalHeaderBlock);
  return std::all_of(directory.entries.begin(), directory.entries.end(), [&bytes](const ZipEntry& entry) {
    const std::size_t size = LocalHeaderSize(bytes.At(entry.position, kLocalHeaderSize));
    const std::string_view header = bytes.At(entry.position, size);
    ZipEntry local;
    return size > 0 && header.size() == size && (ParseLocalHeader(header, &local) || local.HasDescriptor()) &&
           Agrees(local, entry, !local.HasDescriptor());
  });
}

}  // namespace quendle::modules
