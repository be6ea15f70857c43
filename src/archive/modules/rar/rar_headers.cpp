#include "archive/modules/rar/rar_headers.h"

#include <iterator>
#include <utility>

#include "archive/modules/common/entry_names.h"
#include "archive/modules/common/entry_times.h"
#include "archive/modules/rar/rar4_blocks.h"
#include "archive/modules/rar/rar5_blocks.h"

namespace quendle::modules {
namespace {

using namespace std::string_view_literals;

constexpr std::string_view kSignature4 = "Rar!\x1A\x07\x00"sv;
constexpr std::string_view kSignature5 = "Rar!\x1A\x07\x01\x00"sv;

constexpr std::uint8_t kUnix = 3;

// The parts of a file are one: the last of them has the checksum of the whole.
void Append(RarArchive volume, RarArchive* archive) {
  auto part = volume.files.begin();
  if (part != volume.files.end() && part->continued && !archive->files.empty()) {
    RarFile& file = archive->files.back();
    file.packed_size += part->packed_size;
    file.crc = part->crc;
    file.continues = part->continues;
    ++part;
  }
  archive->files.insert(archive->files.end(), std::make_move_iterator(part),
                        std::make_move_iterator(volume.files.end()));
  archive->has_next = volume.has_next;
  archive->names_encrypted = archive->names_encrypted || volume.names_encrypted;
  archive->problem = std::move(volume.problem);
}

}  // namespace

RarVersion RarVersionAt(const ArchiveInput& input, std::uint64_t position) {
  std::string bytes(kSignature5.size(), '\0');
  std::size_t got = 0;
  if (!input.ReadAt(position, bytes.data(), bytes.size(), &got).ok()) return RarVersion::kNone;
  bytes.resize(got);
  if (bytes.starts_with(kSignature4)) return RarVersion::kRar4;
  return bytes == kSignature5 ? RarVersion::kRar5 : RarVersion::kNone;
}

bool BeginsRar(const ArchiveInput& input, std::uint64_t position) {
  switch (RarVersionAt(input, position)) {
    case RarVersion::kRar4:
      return BeginsRar4(input, position + kSignature4.size());
    case RarVersion::kRar5:
      return BeginsRar5(input, position + kSignature5.size());
    default:
      return false;
  }
}

RarArchive ReadRarVolume(const ArchiveInput& input, std::uint64_t begin, std::uint64_t end) {
  RarArchive volume;
  volume.version = RarVersionAt(input, begin);
  if (volume.version == RarVersion::kRar4) {
    ReadRar4Blocks(input, begin + kSignature4.size(), end, &volume);
    // The flag for the first volume is as young as version 3.
    volume.is_first = volume.files.empty() || !volume.files.front().continued;
  } else if (volume.version == RarVersion::kRar5) {
    ReadRar5Blocks(input, begin + kSignature5.size(), end, &volume);
  } else {
    volume.problem = why::kOddVolume;
  }
  return volume;
}

RarArchive ReadRarArchive(const ArchiveInput& input) {
  RarArchive archive;
  for (std::size_t i = 0; i < input.VolumeCount(); ++i) {
    const bool is_last = i + 1 == input.VolumeCount();
    RarArchive volume =
        ReadRarVolume(input, input.VolumeStart(i), is_last ? input.Size() : input.VolumeStart(i + 1));
    if (i == 0) {
      archive = std::move(volume);
    } else {
      Append(std::move(volume), &archive);
    }
    if (!archive.problem.empty() || archive.names_encrypted) break;
  }
  return archive;
}

Entry ToEntry(const RarFile& file, const std::string& charset) {
  Entry entry;
  entry.path = DecodeName(file.name, file.is_unicode, charset);
  constexpr std::uint32_t kKindOfMode = 0170000;
  constexpr std::uint32_t kLinkMode = 0120000;
  if (file.is_folder) {
    entry.kind = EntryKind::kFolder;
    if (!entry.path.ends_with('/')) entry.path += '/';
  } else if (file.host == kUnix && (file.mode & kKindOfMode) == kLinkMode) {
    entry.kind = EntryKind::kLink;
  } else {
    entry.size = file.size;
    entry.attributes.executable = file.host == kUnix && (file.mode & 0111) != 0;
  }
  entry.packed_size = file.packed_size;
  entry.crc = file.crc;
  entry.encrypted = file.encrypted;
  entry.method = std::string("m").append(1, static_cast<char>(file.method));
  entry.attributes.write_time = TimeFromDos(file.dos_time);
  if (entry.attributes.write_time) {
    entry.attributes.write_time->seconds += file.nanoseconds / 1'000'000'000;
    entry.attributes.write_time->nanoseconds = file.nanoseconds % 1'000'000'000;
  }
  return entry;
}

}  // namespace quendle::modules
