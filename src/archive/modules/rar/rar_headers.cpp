#include "archive/modules/rar/rar_headers.h"

#include <iterator>
#include <utility>

#include "archive/modules/common/entry_names.h"
#include "archive/modules/rar/rar13_blocks.h"
#include "archive/modules/rar/rar4_blocks.h"
#include "archive/modules/rar/rar5_blocks.h"

namespace quendle::modules {
namespace {

using namespace std::string_view_literals;

constexpr std::string_view kSignature13 = "RE~^"sv;
constexpr std::string_view kSignature4 = "Rar!\x1A\x07\x00"sv;
constexpr std::string_view kSignature5 = "Rar!\x1A\x07\x01\x00"sv;

// The parts of an entry are one: the last of them has the checksum and, where the others did not know, the size.
void Continue(RarFile* file, RarFile part) {
  if (!file->is_rotating_sum) file->parts.back().crc = file->crc;
  file->parts.insert(file->parts.end(), part.parts.begin(), part.parts.end());
  file->crc = part.crc;
  file->blake2sp = std::move(part.blake2sp);
  file->continues = part.continues;
  if (!file->size) file->size = part.size;
}

void Append(RarArchive volume, RarArchive* archive) {
  auto part = volume.files.begin();
  if (part != volume.files.end() && part->continued && !archive->files.empty()) {
    RarFile& file = archive->files.back();
    if (file.continues && file.name == part->name) Continue(&file, std::move(*part++));
  }
  archive->files.insert(archive->files.end(), std::make_move_iterator(part),
                        std::make_move_iterator(volume.files.end()));
  archive->has_next = volume.has_next;
  archive->problem = std::move(volume.problem);
  archive->status = volume.status;
}

}  // namespace

RarVersion RarVersionAt(const ArchiveInput& input, std::uint64_t position) {
  std::string bytes(kSignature5.size(), '\0');
  std::size_t got = 0;
  if (!input.ReadAt(position, bytes.data(), bytes.size(), &got).ok()) return RarVersion::kNone;
  bytes.resize(got);
  if (bytes.starts_with(kSignature4)) return RarVersion::kRar4;
  if (bytes.starts_with(kSignature13)) return RarVersion::kRar13;
  return bytes == kSignature5 ? RarVersion::kRar5 : RarVersion::kNone;
}

bool BeginsRar(const ArchiveInput& input, std::uint64_t position) {
  switch (RarVersionAt(input, position)) {
    case RarVersion::kRar13:
      return BeginsRar13(input, position);
    case RarVersion::kRar4:
      return BeginsRar4(input, position + kSignature4.size());
    case RarVersion::kRar5:
      return BeginsRar5(input, position + kSignature5.size());
    case RarVersion::kNone:
      return false;
  }
  return false;
}

RarArchive ReadRarVolume(const ArchiveInput& input, std::uint64_t begin, std::uint64_t end, RarKeys* keys) {
  RarArchive volume;
  volume.version = RarVersionAt(input, begin);
  if (volume.version == RarVersion::kRar13) {
    ReadRar13Headers(input, begin, end, &volume);
  } else if (volume.version == RarVersion::kRar4) {
    ReadRar4Blocks(input, begin + kSignature4.size(), end, keys, &volume);
  } else if (volume.version == RarVersion::kRar5) {
    ReadRar5Blocks(input, begin + kSignature5.size(), end, keys, &volume);
  } else {
    volume.problem = why::kOddVolume;
    volume.status = ReadStatus::kFailed;
  }
  if (volume.version == RarVersion::kRar13 || volume.version == RarVersion::kRar4) {
    const bool continues_another = !volume.files.empty() && volume.files.front().continued;
    volume.is_first = volume.is_first && volume.number.value_or(0) == 0 && !continues_another;
  }
  return volume;
}

RarArchive ReadRarArchive(const ArchiveInput& input, RarKeys* keys) {
  RarArchive archive;
  for (std::size_t i = 0; i < input.VolumeCount(); ++i) {
    const bool is_last = i + 1 == input.VolumeCount();
    const std::uint64_t end = is_last ? input.Size() : input.VolumeStart(i + 1);
    RarArchive volume = ReadRarVolume(input, input.VolumeStart(i), end, keys);
    const bool is_another = volume.number && volume.number != i;
    if (i == 0) {
      archive = std::move(volume);
    } else if (volume.version == RarVersion::kNone || is_another) {
      archive.problem = why::kNoVolumeOfThis(input.Paths()[i]);
      archive.status = ReadStatus::kFailed;
    } else {
      Append(std::move(volume), &archive);
    }
    if (!archive.problem.empty() || !archive.has_next) break;
  }
  return archive;
}

Entry ToEntry(const RarFile& file, const std::string& charset) {
  Entry entry;
  entry.path = DecodeName(file.name, file.is_unicode, charset);
  entry.kind = file.kind;
  entry.link_target = file.link_target;
  entry.attributes = file.attributes;
  if (file.kind == EntryKind::kFolder && !entry.path.ends_with('/')) entry.path += '/';
  if (file.kind == EntryKind::kFile) entry.size = file.size;
  entry.packed_size = file.PackedSize();
  entry.crc = file.crc.value_or(0);
  entry.encrypted = file.encryption.has_value();
  entry.method = file.method;
  return entry;
}

}  // namespace quendle::modules
