#include "archive/modules/sevenzip/sevenzip_headers.h"

#include <algorithm>

#include "archive/modules/common/checksum.h"
#include "archive/modules/common/little_endian.h"

namespace quendle::modules {
namespace {

constexpr std::size_t kStartSize = 32;
// Of an end header that only says where the list is; the list itself may be longer, and is not parsed here.
constexpr std::uint64_t kMostRead = 64U << 10;

// The numbers of the properties in headers.
enum Property : std::uint8_t {
  kEnd = 0x00,
  kHeader = 0x01,
  kPackInfo = 0x06,
  kUnpackInfo = 0x07,
  kSizes = 0x09,
  kDigests = 0x0A,
  kFolders = 0x0B,
  kUnpackSizes = 0x0C,
  kPackedHeader = 0x17,
};

// Reads the description of a packed list; everything answers 0 once it does not go on as it should.
class Description {
 public:
  explicit Description(std::string_view bytes) : rest_(bytes) {}

  std::optional<std::uint64_t> UnpackedSize() {
    Expect(kPackedHeader);
    SkipPackInfo();
    Expect(kUnpackInfo);
    Expect(kFolders);
    const std::uint64_t folders = Number();
    Expect(0);  // they stand here, not elsewhere
    std::uint64_t sizes = 0;
    for (std::uint64_t i = 0; i < folders && good_; ++i) sizes += SkipFolder();
    Expect(kUnpackSizes);
    std::uint64_t largest = 0;
    for (std::uint64_t i = 0; i < sizes && good_; ++i) largest = std::max(largest, Number());
    return good_ ? std::optional(largest) : std::nullopt;
  }

 private:
  std::uint8_t Byte() {
    good_ = good_ && !rest_.empty();
    if (!good_) return 0;
    const auto byte = static_cast<std::uint8_t>(rest_.front());
    rest_.remove_prefix(1);
    return byte;
  }
  void Skip(std::uint64_t count) {
    good_ = good_ && count <= rest_.size();
    if (good_) rest_.remove_prefix(static_cast<std::size_t>(count));
  }
  void Expect(std::uint8_t byte) { good_ = Byte() == byte && good_; }

  // As many ones as the first byte begins with are the bytes that follow; its other bits are the highest ones.
  std::uint64_t Number() {
    const std::uint8_t first = Byte();
    std::uint64_t value = 0;
    unsigned mask = 0x80;
    for (unsigned i = 0; i < 8; ++i, mask >>= 1U) {
      if ((first & mask) == 0) return value | static_cast<std::uint64_t>(first & (mask - 1)) << (8 * i);
      value |= static_cast<std::uint64_t>(Byte()) << (8 * i);
    }
    return value;
  }

  void SkipPackInfo() {
    Expect(kPackInfo);
    (void)Number();  // where the data is
    const std::uint64_t streams = Number();
    for (std::uint8_t property = Byte(); property != kEnd && good_; property = Byte()) {
      if (property != kSizes && property != kDigests) good_ = false;
      if (property == kSizes) {
        for (std::uint64_t i = 0; i < streams && good_; ++i) (void)Number();
      } else if (Byte() != 0) {
        Skip(streams <= rest_.size() ? 4 * streams : rest_.size() + 1);
      } else {
        good_ = false;  // checksums of some streams only, which nobody writes here
      }
    }
  }

  // The number of streams that come out of its coders.
  std::uint64_t SkipFolder() {
    std::uint64_t inputs = 0;
    std::uint64_t outputs = 0;
    const std::uint64_t coders = Number();
    for (std::uint64_t i = 0; i < coders && good_; ++i) {
      const std::uint8_t flags = Byte();
      Skip(flags & 0x0FU);  // its number
      inputs += (flags & 0x10U) != 0 ? Number() : 1;
      outputs += (flags & 0x10U) != 0 ? Number() : 1;
      if ((flags & 0x20U) != 0) Skip(Number());
    }
    good_ =
        good_ && outputs > 0 && outputs <= rest_.size() && inputs <= rest_.size() && inputs + 1 >= outputs;
    if (!good_) return 0;
    for (std::uint64_t i = 0; i < 2 * (outputs - 1); ++i) (void)Number();  // which stream goes where
    const std::uint64_t packed = inputs - (outputs - 1);
    for (std::uint64_t i = 0; packed > 1 && i < packed && good_; ++i) (void)Number();
    return outputs;
  }

  std::string_view rest_;
  bool good_ = true;
};

}  // namespace

std::optional<SevenZipStart> ReadSevenZipStart(const ArchiveInput& input, std::uint64_t position) {
  std::string header(kStartSize, '\0');
  std::size_t got = 0;
  const platform::Result result = input.ReadAt(position, header.data(), header.size(), &got);
  if (!result.ok() || got < header.size() || !header.starts_with(kSevenZipSignature)) return std::nullopt;
  if (LittleEndian(header, 8, 4) != Crc32(std::string_view(header).substr(12))) return std::nullopt;
  return SevenZipStart{kStartSize + LittleEndian(header, 12, 8), LittleEndian(header, 20, 8)};
}

std::optional<std::uint64_t> UnpackedHeadersSize(const ArchiveInput& input) {
  const auto start = ReadSevenZipStart(input, 0);
  if (!start) return std::nullopt;
  std::string bytes(static_cast<std::size_t>(std::min(start->end_size, kMostRead)), '\0');
  std::size_t got = 0;
  if (!input.ReadAt(start->end_offset, bytes.data(), bytes.size(), &got).ok()) return std::nullopt;
  bytes.resize(got);
  if (bytes.empty() || bytes.front() == kHeader) return start->end_size;
  return Description(bytes).UnpackedSize();
}

}  // namespace quendle::modules
