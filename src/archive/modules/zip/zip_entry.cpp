#include "archive/modules/zip/zip_entry.h"

#include <utility>

#include "archive/modules/common/checksum.h"
#include "archive/modules/common/entry_names.h"
#include "archive/modules/common/entry_times.h"
#include "archive/modules/common/little_endian.h"

namespace quendle::modules {
namespace {

constexpr std::uint16_t kUtf8Flag = 1U << 11;
constexpr std::uint64_t kWide32 = 0xFFFFFFFF;

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

// What both kinds of header have in the same order, `shared` from the version that is needed on. Takes the
// sizes out of `wide`, the extra field of large numbers.
bool ParseShared(std::string_view shared, std::string_view name, std::string_view extra,
                 std::string_view* wide, ZipEntry* entry) {
  entry->name = name;
  entry->flags = Word(shared, 2);
  entry->packed_method = Word(shared, 4);
  entry->dos_time = Double(shared, 6);
  entry->crc = Double(shared, 10);
  entry->packed_size = Double(shared, 14);
  entry->size = Double(shared, 18);
  entry->time = TimeOf(extra, entry->dos_time);

  const std::string_view aes = ExtraField(extra, 0x9901);
  const bool is_aes = entry->packed_method == kZipAes && aes.size() >= 7;
  entry->method = is_aes ? Word(aes, 5) : entry->packed_method;
  if (is_aes) {
    entry->aes_version = Word(aes, 0);
    entry->aes_strength = static_cast<std::uint8_t>(aes[4]);
  }

  const std::string_view strong = ExtraField(extra, 0x0017);
  if (!strong.empty()) {
    const auto head = static_cast<std::size_t>(strong.data() - extra.data()) - 4;
    entry->strong_encryption = extra.substr(head, 4 + strong.size());
  }

  entry->is_utf8 = (entry->flags & kUtf8Flag) != 0;
  const std::string_view unicode = ExtraField(extra, 0x7075);
  if (unicode.size() > 5 && unicode[0] == 1 && Double(unicode, 1) == Crc32(entry->name)) {
    entry->unicode_name = unicode.substr(5);
  }
  *wide = ExtraField(extra, 0x0001);
  return TakeWide(wide, kWide32, 8, &entry->size) && TakeWide(wide, kWide32, 8, &entry->packed_size);
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
    case 0040000:
      return EntryKind::kFolder;
    case 0120000:
      return EntryKind::kLink;
    case 0020000:  // devices and sockets
    case 0060000:
    case 0140000:
      return EntryKind::kOther;
    default:  // also a pipe: what a packer has read from one is the content of a file
      break;
  }
  // A folder has no content: that of a file whose attributes are damaged must not go.
  const bool has_mark = ModeOf(zip) == 0 && (zip.made_by >> 8U) == 0 && zip.size == 0 &&
                        (zip.external_attributes & kDosFolder) != 0;
  const bool is_folder = path.ends_with('/') || has_mark;
  return is_folder ? EntryKind::kFolder : EntryKind::kFile;
}

}  // namespace

std::size_t DirectoryHeaderSize(std::string_view begin) {
  if (begin.size() < kDirectoryHeaderSize || !begin.starts_with("PK\1\2")) return 0;
  return kDirectoryHeaderSize + Word(begin, 28) + Word(begin, 30) + Word(begin, 32);
}

std::size_t LocalHeaderSize(std::string_view begin) {
  if (begin.size() < kLocalHeaderSize || !begin.starts_with("PK\3\4")) return 0;
  return kLocalHeaderSize + Word(begin, 26) + Word(begin, 28);
}

bool ParseDirectoryHeader(std::string_view header, ZipEntry* entry, ZipPlace* place) {
  const std::size_t name_size = Word(header, 28);
  const std::string_view extra = header.substr(kDirectoryHeaderSize + name_size, Word(header, 30));
  std::string_view wide;
  const bool has_sizes =
      ParseShared(header.substr(6), header.substr(kDirectoryHeaderSize, name_size), extra, &wide, entry);
  entry->made_by = Word(header, 4);
  entry->external_attributes = Double(header, 38);
  place->volume = Word(header, 34);
  place->offset = Double(header, 42);
  return has_sizes && TakeWide(&wide, kWide32, 8, &place->offset) &&
         TakeWide(&wide, 0xFFFF, 4, &place->volume);
}

bool ParseLocalHeader(std::string_view header, ZipEntry* entry) {
  const std::size_t name_size = Word(header, 26);
  std::string_view wide;
  return ParseShared(header.substr(4), header.substr(kLocalHeaderSize, name_size),
                     header.substr(kLocalHeaderSize + name_size), &wide, entry);
}

bool Agrees(const ZipEntry& local, const ZipEntry& entry, bool has_sizes) {
  return local.name == entry.name && local.packed_method == entry.packed_method &&
         (!has_sizes ||
          (local.crc == entry.crc && local.packed_size == entry.packed_size && local.size == entry.size));
}

std::string ZipMethodName(std::uint16_t method) {
  static constexpr std::pair<std::uint16_t, const char*> kNames[] = {
      {0, "store"},   {1, "shrink"},  {2, "reduce 1"},  {3, "reduce 2"},     {4, "reduce 3"}, {5, "reduce 4"},
      {6, "implode"}, {8, "deflate"}, {9, "deflate64"}, {10, "dcl implode"}, {12, "bzip2"},   {14, "lzma"},
      {16, "cmpsc"},  {18, "terse"},  {19, "lz77"},     {20, "zstd"},        {93, "zstd"},    {94, "mp3"},
      {95, "xz"},     {96, "jpeg"},   {97, "wavpack"},  {98, "ppmd"},
  };
  for (const auto& [number, name] : kNames) {
    if (number == method) return name;
  }
  return "method " + std::to_string(method);
}

Entry ToEntry(const ZipEntry& zip, const std::string& charset) {
  Entry entry;
  entry.path = zip.unicode_name.empty() ? DecodeName(zip.name, zip.is_utf8, charset)
                                        : DecodeName(zip.unicode_name, true, charset);
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
  entry.method = ZipMethodName(zip.method);
  return entry;
}

}  // namespace quendle::modules
