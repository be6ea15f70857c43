#include "archive/modules/rar/rar13_blocks.h"

#include <string>

#include "archive/modules/common/entry_times.h"
#include "archive/modules/common/little_endian.h"
#include "archive/modules/rar/header_bytes.h"

namespace quendle::modules {
namespace {

constexpr std::size_t kMainSize = 7;
constexpr std::size_t kFileSize = 21;  // without the name

bool ReadMain(HeaderBytes* header, std::uint64_t begin, std::uint64_t* size) {
  if (!header->Begin(begin) || !header->Read(kMainSize)) return false;
  *size = LittleEndian(header->Bytes(), 4, 2);
  return *size >= kMainSize && (LittleEndian(header->Bytes(), 6, 1) & 0x80) != 0;
}

RarFile ToFile(std::string_view bytes, bool is_solid) {
  const auto number = [bytes](std::size_t at, std::size_t width) { return LittleEndian(bytes, at, width); };
  RarFile file;
  file.name = bytes.substr(kFileSize, static_cast<std::size_t>(number(19, 1)));
  if ((number(16, 1) & 0x10) != 0) file.kind = EntryKind::kFolder;
  file.size = number(4, 4);
  file.crc = static_cast<std::uint32_t>(number(8, 2));
  file.is_rotating_sum = true;
  file.attributes.write_time = TimeFromDos(static_cast<std::uint32_t>(number(12, 4)));
  file.continued = (number(17, 1) & 1) != 0;
  file.continues = (number(17, 1) & 2) != 0;
  if ((number(17, 1) & 4) != 0) file.encryption.emplace().kind = RarEncryption::Kind::kRar13;
  file.packing = number(20, 1) == 0   ? RarPacking::kStored
                 : number(20, 1) <= 5 ? RarPacking::k15
                                      : RarPacking::kUnknown;
  file.method = std::string("m").append(std::to_string(number(20, 1))).append(" of version 13");
  file.is_solid = is_solid;
  return file;
}

}  // namespace

bool BeginsRar13(const ArchiveInput& input, std::uint64_t begin) {
  HeaderBytes header(input, input.Size());
  std::uint64_t size = 0;
  return ReadMain(&header, begin, &size);
}

void ReadRar13Headers(const ArchiveInput& input, std::uint64_t begin, std::uint64_t end,
                      RarArchive* archive) {
  HeaderBytes header(input, end);
  std::uint64_t size = 0;
  archive->problem = why::kCutOffInHeader;
  archive->status = ReadStatus::kFailed;
  if (!ReadMain(&header, begin, &size)) return;
  const std::uint64_t flags = LittleEndian(header.Bytes(), 6, 1);
  archive->is_volume = (flags & 1) != 0;
  for (std::uint64_t position = header.EndOf(static_cast<std::size_t>(size)); position < end;) {
    if (!header.Begin(position) || !header.Read(kFileSize)) return;
    const auto name_end = kFileSize + static_cast<std::size_t>(LittleEndian(header.Bytes(), 19, 1));
    const auto header_size = static_cast<std::size_t>(LittleEndian(header.Bytes(), 10, 2));
    if (header_size < name_end || !header.Read(header_size)) return;
    if (archive->files.size() >= kMostRarFiles) {
      archive->problem = why::kTooManyEntries;
      return;
    }
    const std::uint64_t content = header.EndOf(header_size);
    const std::uint64_t packed_size = LittleEndian(header.Bytes(), 0, 4);
    if (packed_size > end - content) {
      archive->problem = why::kCutOff;
      return;
    }
    RarFile& file =
        archive->files.emplace_back(ToFile(header.Bytes(), (flags & 8) != 0 && !archive->files.empty()));
    file.parts = {{content, packed_size}};
    archive->has_next = file.continues;
    position = content + packed_size;
  }
  archive->end = end;
  archive->problem = {};
  archive->status = ReadStatus::kEnd;
}

}  // namespace quendle::modules
