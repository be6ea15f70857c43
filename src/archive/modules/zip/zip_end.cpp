#include "archive/modules/zip/zip_end.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

#include "archive/modules/common/little_endian.h"
#include "archive/modules/common/signature_scan.h"

namespace quendle::modules {
namespace {

using platform::Code;

constexpr std::string_view kEndSignature = "PK\5\6";
constexpr std::string_view kEnd64Signature = "PK\6\6";
constexpr std::string_view kLocatorSignature = "PK\6\7";
constexpr std::string_view kEntrySignature = "PK\1\2";
constexpr std::uint64_t kEndSize = 22;
constexpr std::uint64_t kEnd64Size = 56;
constexpr std::uint64_t kLocatorSize = 20;
// The longest comment, and as much behind the archive (signed programs have certificates there).
constexpr std::uint64_t kReach = 128U << 10;

// The bytes from `position` on; fewer at the end, and none when they cannot be read.
std::string Bytes(const ArchiveInput& input, std::uint64_t position, std::uint64_t size) {
  std::string bytes(static_cast<std::size_t>(size), '\0');
  std::size_t got = 0;
  if (!input.ReadAt(position, bytes.data(), bytes.size(), &got).ok()) got = 0;
  bytes.resize(got);
  return bytes;
}

bool Stands(const ArchiveInput& input, std::uint64_t position, std::string_view signature) {
  return Bytes(input, position, signature.size()) == signature;
}

// What one end record says.
struct Record {
  std::uint64_t position;  // the directory ends here at the latest
  std::uint64_t volume;    // its own
  std::uint64_t directory_volume;
  std::uint64_t entries;
  std::uint64_t directory_size;
  std::uint64_t directory_offset;  // in its volume
  bool is_64;
};

// The 64-bit record before the record, if that refers to one.
std::optional<Record> Wide(const ArchiveInput& input, const Record& record) {
  const bool refers = record.volume == 0xFFFF || record.directory_volume == 0xFFFF ||
                      record.entries == 0xFFFF || record.directory_size == 0xFFFFFFFF ||
                      record.directory_offset == 0xFFFFFFFF;
  if (!refers || record.position < kLocatorSize + kEnd64Size) return std::nullopt;
  const std::string locator = Bytes(input, record.position - kLocatorSize, kLocatorSize);
  if (!locator.starts_with(kLocatorSignature)) return std::nullopt;
  // With bytes in front of the archive the record is not where the locator says, but right before it.
  std::uint64_t position = record.position - kLocatorSize - kEnd64Size;
  const std::uint64_t volume = LittleEndian(locator, 4, 4);
  if (volume < input.VolumeCount()) {
    const std::uint64_t said =
        input.VolumeStart(static_cast<std::size_t>(volume)) + LittleEndian(locator, 8, 8);
    if (said < position && Stands(input, said, kEnd64Signature)) position = said;
  }
  const std::string bytes = Bytes(input, position, kEnd64Size);
  if (!bytes.starts_with(kEnd64Signature) || bytes.size() < kEnd64Size) return std::nullopt;
  return Record{position,
                LittleEndian(bytes, 16, 4),
                LittleEndian(bytes, 20, 4),
                LittleEndian(bytes, 32, 8),
                LittleEndian(bytes, 40, 8),
                LittleEndian(bytes, 48, 8),
                true};
}

// Where the directory of that record is, if there is one.
std::optional<ZipEnd> Locate(const ArchiveInput& input, const Record& record) {
  ZipEnd end;
  end.volumes = record.volume + 1;
  if (end.volumes > input.VolumeCount()) return end;
  if (record.directory_size > record.position || record.directory_volume >= input.VolumeCount()) return {};
  end.directory_size = record.directory_size;
  end.entries = record.entries;
  end.counts_modulo_65536 = !record.is_64;
  const std::uint64_t said =
      input.VolumeStart(static_cast<std::size_t>(record.directory_volume)) + record.directory_offset;
  const auto is_there = [&](std::uint64_t position) {
    return record.directory_size == 0 || Stands(input, position, kEntrySignature);
  };
  // It ends right before the record, unless something stands between them.
  const std::uint64_t adjacent = record.position - record.directory_size;
  if (record.directory_offset <= said && said <= adjacent) {
    if (is_there(adjacent)) {
      end.directory = adjacent;
      end.front = adjacent - said;
      return end;
    }
    if (is_there(said)) {
      end.directory = said;
      return end;
    }
  }
  return {};
}

bool MayHaveInFront(std::string_view begin, std::uint64_t front) {
  // A set that turned out to be one file begins with a mark that is not counted.
  return front == 0 || (front == 4 && begin == std::string_view("PK00"));
}

}  // namespace

platform::Result FindZipEnd(const ArchiveInput& input, ZipEnd* end) {
  const std::string begin = Bytes(input, 0, 4);
  const bool is_program = BeginsWithProgram(input);
  const std::uint64_t reach = std::min(input.Size(), kReach);
  const std::uint64_t window_position = input.Size() - reach;
  const std::string window = Bytes(input, window_position, reach);
  for (std::size_t place = window.rfind(kEndSignature); place != window.npos;
       place = place == 0 ? window.npos : window.rfind(kEndSignature, place - 1)) {
    const std::string_view bytes = std::string_view(window).substr(place);
    if (bytes.size() < kEndSize || bytes.size() - kEndSize < LittleEndian(bytes, 20, 2)) continue;
    Record record{window_position + place,
                  LittleEndian(bytes, 4, 2),
                  LittleEndian(bytes, 6, 2),
                  LittleEndian(bytes, 10, 2),
                  LittleEndian(bytes, 12, 4),
                  LittleEndian(bytes, 16, 4),
                  false};
    if (const auto wide = Wide(input, record)) record = *wide;
    const std::optional<ZipEnd> found = Locate(input, record);
    if (!found) continue;
    if (found->volumes <= input.VolumeCount() && !is_program && !MayHaveInFront(begin, found->front))
      continue;
    *end = *found;
    if (end->volumes <= input.VolumeCount()) return platform::Success();
    return Failure(Code::kFailed, input.Path(), why::kVolumesMissing(end->volumes));
  }
  return Failure(Code::kFailed, input.Path(), why::kDirectoryMissing);
}

}  // namespace quendle::modules
