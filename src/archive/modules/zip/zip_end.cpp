#include "archive/modules/zip/zip_end.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

#include "archive/modules/common/little_endian.h"
#include "archive/modules/zip/zip_bytes.h"

namespace quendle::modules {
namespace {

using platform::Code;

constexpr std::string_view kEndSignature = "PK\5\6";
constexpr std::string_view kEnd64Signature = "PK\6\6";
constexpr std::string_view kLocatorSignature = "PK\6\7";
constexpr std::string_view kEntrySignature = "PK\1\2";
constexpr std::size_t kMarkSize = 4;  // of volumes, in front of everything
constexpr std::uint64_t kEndSize = 22;
constexpr std::uint64_t kEnd64Size = 56;
constexpr std::uint64_t kEncryptionSize = 28;  // of what may follow
constexpr std::uint64_t kLocatorSize = 20;
// The longest comment, and as much behind the archive (signed programs have certificates there).
constexpr std::uint64_t kReach = 128U << 10;

bool Stands(ZipBytes* bytes, std::uint64_t position, std::string_view signature) {
  return bytes->At(position, signature.size()) == signature;
}

// What one end record says.
struct Record {
  std::uint64_t position = 0;  // the directory ends here at the latest
  std::uint64_t volume = 0;    // its own
  std::uint64_t directory_volume = 0;
  std::uint64_t entries = 0;
  std::uint64_t directory_size = 0;
  std::uint64_t directory_offset = 0;  // in its volume
  bool is_64 = false;
  bool is_encrypted = false;  // the directory
};

// The 64-bit record before the record, if that refers to one.
std::optional<Record> Wide(const ArchiveInput& input, ZipBytes* bytes, const Record& record) {
  const bool refers = record.volume == 0xFFFF || record.directory_volume == 0xFFFF ||
                      record.entries == 0xFFFF || record.directory_size == 0xFFFFFFFF ||
                      record.directory_offset == 0xFFFFFFFF;
  if (!refers || record.position < kLocatorSize + kEnd64Size) return std::nullopt;
  const std::string_view locator = bytes->At(record.position - kLocatorSize, kLocatorSize);
  if (!locator.starts_with(kLocatorSignature)) return std::nullopt;
  // With bytes in front of the archive the record is not where the locator says, but right before it.
  std::uint64_t position = record.position - kLocatorSize - kEnd64Size;
  const std::uint64_t volume = LittleEndian(locator, 4, 4);
  if (volume < input.VolumeCount()) {
    const std::uint64_t said =
        input.VolumeStart(static_cast<std::size_t>(volume)) + LittleEndian(locator, 8, 8);
    if (said < position && Stands(bytes, said, kEnd64Signature)) position = said;
  }
  const std::string_view wide = bytes->At(position, kEnd64Size + kEncryptionSize);
  if (!wide.starts_with(kEnd64Signature) || wide.size() < kEnd64Size) return std::nullopt;
  // The second version of the record goes on with how the directory is packed and encrypted.
  const bool goes_on = LittleEndian(wide, 4, 8) >= kEnd64Size - 12 + kEncryptionSize;
  return Record{position,
                LittleEndian(wide, 16, 4),
                LittleEndian(wide, 20, 4),
                LittleEndian(wide, 32, 8),
                LittleEndian(wide, 40, 8),
                LittleEndian(wide, 48, 8),
                true,
                goes_on && LittleEndian(wide, kEnd64Size + 18, 2) != 0};
}

// Where the directory of that record is, if there is one.
std::optional<ZipEnd> Locate(const ArchiveInput& input, ZipBytes* bytes, const Record& record) {
  ZipEnd end;
  end.volumes = record.volume + 1;
  if (record.directory_size > record.position || record.directory_volume > record.volume) return {};
  // It ends right before the record, unless something stands between them.
  const std::uint64_t adjacent = record.position - record.directory_size;
  const bool is_adjacent = record.is_encrypted || Stands(bytes, adjacent, kEntrySignature);
  if (end.volumes > input.VolumeCount()) {
    const bool may_be = is_adjacent || record.directory_volume < record.volume;
    return may_be && record.directory_size > 0 ? std::optional(end) : std::nullopt;
  }
  end.directory_size = record.directory_size;
  end.entries = record.entries;
  end.counts_modulo_65536 = !record.is_64;
  const std::uint64_t said =
      input.VolumeStart(static_cast<std::size_t>(record.directory_volume)) + record.directory_offset;
  if (record.directory_size == 0) {
    if (record.entries != 0 || said != adjacent || adjacent > kMarkSize) return {};
    end.directory = adjacent;
    return end;
  }
  if (!is_adjacent && (said > adjacent || !Stands(bytes, said, kEntrySignature))) return {};
  end.directory = is_adjacent ? adjacent : said;
  end.shift = static_cast<std::int64_t>(end.directory - said);
  return end;
}

// The record at `position`, where the input goes on with `narrow`, or the 64-bit one before it.
std::optional<Record> ReadRecord(const ArchiveInput& input, ZipBytes* bytes, std::uint64_t position,
                                 std::string_view narrow) {
  if (narrow.size() < kEndSize || narrow.size() - kEndSize < LittleEndian(narrow, 20, 2)) return std::nullopt;
  const Record record{position,
                      LittleEndian(narrow, 4, 2),
                      LittleEndian(narrow, 6, 2),
                      LittleEndian(narrow, 10, 2),
                      LittleEndian(narrow, 12, 4),
                      LittleEndian(narrow, 16, 4)};
  const std::optional<Record> wide = Wide(input, bytes, record);
  return wide ? wide : record;
}

}  // namespace

platform::Result FindZipEnd(const ArchiveInput& input, ZipEnd* end) {
  ZipBytes bytes(input, 512);
  const std::string begin(bytes.At(0, kMarkSize));
  const bool begins = BeginsLikeZip(input);
  const std::uint64_t reach = std::min(input.Size(), kReach);
  const std::uint64_t window_position = input.Size() - reach;
  ZipBytes tail(input, 0);
  const std::string_view window = tail.At(window_position, static_cast<std::size_t>(reach));
  std::optional<ZipEnd> chosen;
  std::uint64_t chosen_position = 0;  // of its record
  bool is_encrypted = false;
  for (std::size_t place = window.rfind(kEndSignature); place != window.npos;
       place = place == 0 ? window.npos : window.rfind(kEndSignature, place - 1)) {
    const std::uint64_t position = window_position + place;
    const auto record = ReadRecord(input, &bytes, position, window.substr(place));
    std::optional<ZipEnd> found = record ? Locate(input, &bytes, *record) : std::nullopt;
    if (!found) continue;
    // A set that turned out to be one file begins with a mark that is not counted.
    const bool is_marked = found->shift == kMarkSize && begin == "PK00";
    found->is_misplaced = begins && found->shift != 0 && !is_marked;
    const bool holds_chosen = position + kEndSize + LittleEndian(window, place + 20, 2) > chosen_position;
    if (chosen && !holds_chosen) continue;
    chosen = found;
    chosen_position = position;
    is_encrypted = record->is_encrypted;
  }
  for (const ZipBytes* read : {&bytes, &tail}) {
    if (!read->result().ok()) return read->result();
  }
  if (!chosen) return Failure(Code::kFailed, input.Path(), why::kDirectoryMissing);
  *end = *chosen;
  if (end->volumes > input.VolumeCount()) {
    return Failure(Code::kFailed, input.Path(), why::kVolumesMissing(end->volumes));
  }
  if (is_encrypted) return Failure(Code::kRefused, input.Path(), why::kDirectoryEncrypted);
  return platform::Success();
}

bool BeginsLikeZip(const ArchiveInput& input) {
  ZipBytes bytes(input, 2 * kMarkSize);
  std::string_view begin = bytes.At(0, 2 * kMarkSize);
  if (begin.starts_with("PK\7\x8") || begin.starts_with("PK00")) begin.remove_prefix(kMarkSize);
  return begin.starts_with("PK\3\4") || begin.starts_with("PK\5\6");
}

}  // namespace quendle::modules
