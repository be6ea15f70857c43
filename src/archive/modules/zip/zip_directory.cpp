#include "archive/modules/zip/zip_directory.h"
#include "archive/modules/zip/zip_end.h"

#include <algorithm>
#include <string_view>

#include "archive/modules/common/checksum.h"
#include "archive/modules/common/entry_names.h"
#include "archive/modules/common/entry_times.h"
#include "archive/modules/common/little_endian.h"

namespace quendle::modules {
namespace {

using platform::Code;

// Much more than a directory of four million entries takes; one beyond would only fill the memory.
constexpr std::uint64_t kLargestDirectory = 1U << 30;
constexpr std::size_t kHeaderSize = 46;
constexpr std::size_t kLocalHeaderSize = 30;
constexpr std::uint16_t kUtf8Flag = 1U << 11;
constexpr std::uint16_t kAes = 99;

std::uint16_t Word(std::string_view bytes, std::size_t position) {
  return static_cast<std::uint16_t>(LittleEndian(bytes, position, 2));
}

std::uint32_t Double(std::string_view bytes, std::size_t position) {
  return static_cast<std::uint32_t>(LittleEndian(bytes, position, 4));
}

// The first extra field of that number; empty when there is none.
std::string_view ExtraField(std::string_view extra, std::uint16_t number) {
  while (extra.size() >= 4) {
    const std::size_t size = Word(extra, 2);
    if (size > extra.size() - 4) break;
    if (Word(extra, 0) == number) return extra.substr(4, size);
    extra.remove_prefix(4 + size);
  }
  return {};
}

std::optional<platform::EntryTime> TimeOf(std::string_view extra, std::uint32_t dos_time) {
  const std::string_view ntfs = ExtraField(extra, 0x000A);
  if (ntfs.size() >= 4) {
    const std::string_view times = ExtraField(ntfs.substr(4), 1);
    if (times.size() >= 24 && LittleEndian(times, 0, 8) != 0) return TimeFromNtfs(LittleEndian(times, 0, 8));
  }
  const std::string_view unix_times = ExtraField(extra, 0x5455);
  if (unix_times.size() >= 5 && (unix_times[0] & 1) != 0) {
    // 32 bits with a sign, but some packers go on without it after 2038.
    const std::int64_t seconds = static_cast<std::int32_t>(Double(unix_times, 1));
    const bool is_after_2038 = (dos_time >> 25U) + 1980 >= 2038;
    return platform::EntryTime{seconds < 0 && is_after_2038 ? seconds + (std::int64_t{1} << 32U) : seconds,
                               0};
  }
  return TimeFromDos(dos_time);
}

// False when the field lacks a number that the header leaves to it.
bool TakeWide(std::string_view* field, std::uint64_t narrow_limit, std::size_t width, std::uint64_t* value) {
  if (*value != narrow_limit) return true;
  if (field->size() < width) return false;
  *value = LittleEndian(*field, 0, width);
  field->remove_prefix(width);
  return true;
}

// The header at `header`, of which all bytes are there.
bool ParseEntry(std::string_view header, const ArchiveInput& input, ZipEntry* entry) {
  const std::size_t name_size = Word(header, 28);
  const std::string_view extra = header.substr(kHeaderSize + name_size, Word(header, 30));
  entry->name = header.substr(kHeaderSize, name_size);
  entry->made_by = Word(header, 4);
  entry->flags = Word(header, 8);
  entry->packed_method = Word(header, 10);
  entry->dos_time = Double(header, 12);
  entry->crc = Double(header, 16);
  entry->packed_size = Double(header, 20);
  entry->size = Double(header, 24);
  entry->external_attributes = Double(header, 38);
  entry->time = TimeOf(extra, entry->dos_time);

  std::uint64_t volume = Word(header, 34);
  std::uint64_t offset = Double(header, 42);
  std::string_view wide = ExtraField(extra, 0x0001);
  if (!TakeWide(&wide, 0xFFFFFFFF, 8, &entry->size) || !TakeWide(&wide, 0xFFFFFFFF, 8, &entry->packed_size) ||
      !TakeWide(&wide, 0xFFFFFFFF, 8, &offset) || !TakeWide(&wide, 0xFFFF, 4, &volume) ||
      volume >= input.VolumeCount() || offset >= input.Size()) {
    return false;
  }
  entry->position = input.VolumeStart(static_cast<std::size_t>(volume)) + offset;

  const std::string_view aes = ExtraField(extra, 0x9901);
  entry->method = entry->packed_method == kAes && aes.size() >= 7 ? Word(aes, 5) : entry->packed_method;

  entry->is_utf8 = (entry->flags & kUtf8Flag) != 0;
  const std::string_view unicode = ExtraField(extra, 0x7075);
  if (unicode.size() > 5 && unicode[0] == 1 && Double(unicode, 1) == Crc32(entry->name)) {
    entry->name = unicode.substr(5);
    entry->is_utf8 = true;
  }
  return true;
}

platform::Result Damaged(const ArchiveInput& input, const Reason& reason) {
  return Failure(Code::kFailed, input.Path(), reason);
}

std::string MethodName(std::uint16_t method) {
  switch (method) {
    case 0:
      return "store";
    case 1:
      return "shrink";
    case 6:
      return "implode";
    case 8:
      return "deflate";
    case 9:
      return "deflate64";
    case 12:
      return "bzip2";
    case 14:
      return "lzma";
    case 93:
      return "zstd";
    case 95:
      return "xz";
    case 98:
      return "ppmd";
    default:
      return "method " + std::to_string(method);
  }
}

// The Unix mode; 0 when it was not made on such a system.
std::uint32_t ModeOf(const ZipEntry& zip) {
  constexpr unsigned kUnix = 3;
  constexpr unsigned kDarwin = 19;
  const unsigned system = zip.made_by >> 8U;
  return system == kUnix || system == kDarwin ? zip.external_attributes >> 16U : 0;
}

EntryKind KindOf(const ZipEntry& zip, const std::string& path) {
  constexpr std::uint32_t kDosFolder = 0x10;
  switch (ModeOf(zip) & 0170000U) {
    case 0:
    case 0100000:
      break;
    case 0040000:
      return EntryKind::kFolder;
    case 0120000:
      return EntryKind::kLink;
    default:
      return EntryKind::kOther;
  }
  const bool is_folder = path.ends_with('/') || (ModeOf(zip) == 0 && (zip.made_by >> 8U) == 0 &&
                                                 (zip.external_attributes & kDosFolder) != 0);
  return is_folder ? EntryKind::kFolder : EntryKind::kFile;
}

}  // namespace

platform::Result ReadZipDirectory(const ArchiveInput& input, ZipDirectory* directory) {
  ZipEnd end;
  platform::Result result = FindZipEnd(input, &end);
  if (!result.ok()) return result;
  if (end.directory_size > kLargestDirectory) return Damaged(input, why::kDirectoryTooLarge);
  directory->position = end.directory;
  directory->entries.clear();
  std::string bytes(static_cast<std::size_t>(end.directory_size), '\0');
  std::size_t got = 0;
  result = input.ReadAt(end.directory, bytes.data(), bytes.size(), &got);
  if (!result.ok()) return result;

  std::string_view rest = std::string_view(bytes).substr(0, got);
  while (rest.starts_with("PK\1\2")) {
    const std::size_t size = kHeaderSize + Word(rest, 28) + Word(rest, 30) + Word(rest, 32);
    if (rest.size() < kHeaderSize || rest.size() < size) return Damaged(input, why::kDirectoryCutOff);
    ZipEntry& entry = directory->entries.emplace_back();
    if (!ParseEntry(rest.substr(0, size), input, &entry)) return Damaged(input, why::kDirectoryMisleads);
    entry.directory_position = end.directory + (got - rest.size());
    rest.remove_prefix(size);
  }
  const std::uint64_t count = directory->entries.size();
  if ((end.counts_modulo_65536 ? count % 65536 : count) != end.entries) {
    return Damaged(input, why::kDirectoryCount(count, end.entries));
  }
  std::stable_sort(directory->entries.begin(), directory->entries.end(),
                   [](const ZipEntry& a, const ZipEntry& b) { return a.position < b.position; });
  return platform::Success();
}

platform::Result CheckZipLayout(const ArchiveInput& input, const ZipDirectory& directory) {
  std::uint64_t free = 0;  // nothing has used the bytes from here on
  for (const ZipEntry& entry : directory.entries) {
    std::string header(kLocalHeaderSize, '\0');
    std::size_t got = 0;
    platform::Result result = input.ReadAt(entry.position, header.data(), header.size(), &got);
    if (!result.ok()) return result;
    const std::uint64_t begin = entry.position + kLocalHeaderSize + Word(header, 26) + Word(header, 28);
    if (entry.position < free || begin > directory.position ||
        entry.packed_size > directory.position - begin) {
      return Failure(Code::kRefused, input.Path(), why::kSharedBytes);
    }
    free = begin + entry.packed_size;
  }
  return platform::Success();
}

Entry ToEntry(const ZipEntry& zip, const std::string& charset) {
  Entry entry;
  entry.path = DecodeName(zip.name, zip.is_utf8, charset);
  entry.kind = KindOf(zip, entry.path);
  if (entry.kind == EntryKind::kFolder && !entry.path.ends_with('/')) entry.path += '/';
  if (entry.kind == EntryKind::kFile) {
    entry.size = zip.size;
    entry.attributes.executable = (ModeOf(zip) & 0111U) != 0;
  }
  entry.attributes.write_time = zip.time;
  entry.packed_size = zip.packed_size;
  entry.crc = zip.crc;
  entry.encrypted = zip.IsEncrypted();
  entry.method = MethodName(zip.method);
  return entry;
}

}  // namespace quendle::modules
