#include "archive/modules/sevenzip/sevenzip_headers.h"

#include <algorithm>
#include <vector>

#include "archive/modules/common/checksum.h"
#include "archive/modules/common/little_endian.h"

namespace quendle::modules {
namespace {

constexpr std::uint64_t kMost = 1ULL << 32U;  // streams in a folder; no list is long enough for their sizes
// Of an end header that only says where the list is; the list itself may be longer, and is not parsed here.
constexpr std::uint64_t kMostRead = 64U << 10;

// The numbers of the properties in headers.
enum Property : std::uint8_t {
  kEnd = 0x00,
  kHeader = 0x01,
  kArchiveProperties = 0x02,
  kMainStreams = 0x04,
  kFiles = 0x05,
  kPackInfo = 0x06,
  kUnpackInfo = 0x07,
  kSubStreams = 0x08,
  kSizes = 0x09,
  kDigests = 0x0A,
  kFolders = 0x0B,
  kUnpackSizes = 0x0C,
  kStreamCounts = 0x0D,
  kPackedHeader = 0x17,
};

// Reads headers; everything answers 0 once they do not go on as they should.
class Headers {
 public:
  explicit Headers(std::string_view bytes) : rest_(bytes) {}

  // Takes the streams of a packed list, behind its mark.
  bool TakePackedList(SevenZipList* list) {
    Expect(kPackInfo);
    list->packed_size = SkipPackInfo();
    Expect(kUnpackInfo);
    list->unpacked_size = SkipFolders();
    return good_;
  }

  std::optional<std::uint64_t> Entries() {
    Expect(kHeader);
    std::uint8_t property = Byte();
    if (property == kArchiveProperties) {
      while (Byte() != kEnd && good_) Skip(Number());
      property = Byte();
    }
    if (property == kMainStreams) {
      SkipStreams();
      property = Byte();
    }
    const std::uint64_t entries = property == kFiles ? Number() : 0;
    good_ = good_ && (property == kFiles || property == kEnd);
    return good_ ? std::optional(entries) : std::nullopt;
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

  // Which of so many streams have a checksum: one bit each, unless all have one. Each is of four bytes.
  std::vector<bool> SkipDigests(std::uint64_t streams) {
    good_ = good_ && streams <= 8 * rest_.size();
    std::vector<bool> have(good_ ? static_cast<std::size_t>(streams) : 0, true);
    if (Byte() == 0) {
      std::uint8_t bits = 0;
      for (std::size_t i = 0; i < have.size(); ++i) {
        if (i % 8 == 0) bits = Byte();
        have[i] = (bits >> (7 - i % 8) & 1U) != 0;
      }
    }
    Skip(4 * static_cast<std::uint64_t>(std::count(have.begin(), have.end(), true)));
    return have;
  }

  // The sum of the packed sizes.
  std::uint64_t SkipPackInfo() {
    (void)Number();  // where the data is
    const std::uint64_t streams = Number();
    std::uint64_t sum = 0;
    for (std::uint8_t property = Byte(); property != kEnd && good_; property = Byte()) {
      if (property == kSizes) {
        for (std::uint64_t i = 0; i < streams && good_; ++i) sum += Number();
      } else if (property == kDigests) {
        (void)SkipDigests(streams);
      } else {
        good_ = false;
      }
    }
    return sum;
  }

  // The folders of coders up to their sizes, of which it is the largest.
  std::uint64_t SkipFolders() {
    Expect(kFolders);
    folders_ = Number();
    Expect(0);  // they stand here, not elsewhere
    std::uint64_t sizes = 0;
    for (std::uint64_t i = 0; i < folders_ && good_; ++i) sizes += SkipFolder();
    Expect(kUnpackSizes);
    std::uint64_t largest = 0;
    for (std::uint64_t i = 0; i < sizes && good_; ++i) largest = std::max(largest, Number());
    return largest;
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

  void SkipStreams() {
    std::uint8_t property = Byte();
    if (property == kPackInfo) {
      (void)SkipPackInfo();
      property = Byte();
    }
    std::vector<bool> have_digests;  // of the folders
    if (property == kUnpackInfo) {
      (void)SkipFolders();
      property = Byte();
      if (property == kDigests) {
        have_digests = SkipDigests(folders_);
        property = Byte();
      }
      good_ = good_ && property == kEnd;
      property = Byte();
    }
    if (property == kSubStreams) {
      SkipSubStreams(have_digests);
      property = Byte();
    }
    good_ = good_ && property == kEnd;
  }

  // The files in each folder; one, if nothing else is said. Their last size is what the others leave.
  void SkipSubStreams(std::vector<bool> have_digests) {
    const auto folders = static_cast<std::size_t>(good_ ? folders_ : 0);
    have_digests.resize(folders);
    std::vector<std::uint64_t> counts(folders, 1);
    std::uint8_t property = Byte();
    if (property == kStreamCounts) {
      for (std::uint64_t& count : counts) count = Number();
      property = Byte();
    }
    std::uint64_t lacking = 0;  // checksums
    for (std::size_t i = 0; i < folders && good_; ++i) {
      for (std::uint64_t j = 1; property == kSizes && j < counts[i] && good_; ++j) (void)Number();
      if (counts[i] != 1 || !have_digests[i]) lacking += std::min(counts[i], kMost);
    }
    if (property == kSizes) property = Byte();
    if (property == kDigests) {
      (void)SkipDigests(lacking);
      property = Byte();
    }
    good_ = good_ && property == kEnd;
  }

  std::string_view rest_;
  std::uint64_t folders_ = 0;
  bool good_ = true;
};

}  // namespace

std::optional<SevenZipStart> ReadSevenZipStart(const ArchiveInput& input, std::uint64_t position) {
  std::string header(kSevenZipStartSize, '\0');
  std::size_t got = 0;
  const platform::Result result = input.ReadAt(position, header.data(), header.size(), &got);
  if (!result.ok() || got < header.size() || !header.starts_with(kSevenZipSignature)) return std::nullopt;
  if (LittleEndian(header, 8, 4) != Crc32(std::string_view(header).substr(12))) return std::nullopt;
  return SevenZipStart{kSevenZipStartSize + LittleEndian(header, 12, 8), LittleEndian(header, 20, 8)};
}

std::optional<SevenZipList> FindSevenZipList(const ArchiveInput& input) {
  const auto start = ReadSevenZipStart(input, 0);
  if (!start) return std::nullopt;
  std::string bytes(static_cast<std::size_t>(std::min(start->end_size, kMostRead)), '\0');
  std::size_t got = 0;
  if (!input.ReadAt(start->end_offset, bytes.data(), bytes.size(), &got).ok()) return std::nullopt;
  bytes.resize(got);
  SevenZipList list{*start, "", 0, start->end_size};
  if (bytes.empty() || bytes.front() == kHeader) return list;
  if (bytes.front() != kPackedHeader || bytes.size() < start->end_size) return std::nullopt;
  list.description = bytes.substr(1);
  return Headers(list.description).TakePackedList(&list) ? std::optional(list) : std::nullopt;
}

bool IsSevenZipList(std::string_view bytes) {
  return !bytes.empty() && bytes.front() == kHeader;
}

std::optional<std::uint64_t> CountEntries(std::string_view list) {
  return Headers(list).Entries();
}

}  // namespace quendle::modules
