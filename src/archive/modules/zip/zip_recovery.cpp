#include "archive/modules/zip/zip_recovery.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <tuple>
#include <utility>

#include "archive/modules/common/little_endian.h"
#include "archive/modules/zip/zip_end.h"

namespace quendle::modules {
namespace {

constexpr std::size_t kScanBlock = 64U << 10;
constexpr std::size_t kHeaderBlock = 4U << 10;
constexpr std::string_view kDescriptorSignature = "PK\7\x8";
constexpr std::string_view kHeaderSignatures[] = {"PK\3\4", "PK\1\2", "PK\5\6", "PK\6\6", "PK\6\x8"};
// The largest descriptor: signature, checksum, two sizes of 64 bits.
constexpr std::size_t kLargestDescriptor = 24;

// Does one of the archive's headers begin there, or the input end?
bool IsBoundary(ZipBytes* bytes, std::uint64_t position) {
  if (position == bytes->Size()) return true;
  const std::string_view signature = bytes->At(position, 4);
  return std::any_of(std::begin(kHeaderSignatures), std::end(kHeaderSignatures),
                     [signature](std::string_view known) { return signature == known; });
}

// Takes what stands behind the content of `entry`, which ends at `end`, when that is a descriptor with `width` bytes
// for a size. Answers its length.
std::size_t TakeDescriptor(ZipBytes* bytes, std::uint64_t begin, std::uint64_t end, std::size_t width,
                           ZipEntry* entry) {
  const std::string_view there = bytes->At(end, kLargestDescriptor);
  const std::size_t signature = there.starts_with(kDescriptorSignature) ? 4 : 0;
  const std::size_t length = signature + 4 + 2 * width;
  if (there.size() < length || LittleEndian(there, signature + 4, width) != end - begin) return 0;
  const auto crc = static_cast<std::uint32_t>(LittleEndian(there, signature, 4));
  const std::uint64_t size = LittleEndian(there, signature + 4 + width, width);
  if (!IsBoundary(bytes, end + length)) return 0;
  entry->crc = crc;
  entry->packed_size = end - begin;
  entry->size = size;
  return length;
}

class Walker {
 public:
  explicit Walker(const ArchiveInput& input) : input_(input), headers_(input, kHeaderBlock) {}

  platform::Result Walk(ZipDirectory* directory) {
    std::uint64_t memory = 0;
    position_ = BeginsLikeZip(input_) && headers_.At(0, 4) != "PK\3\4" ? 4 : 0;
    for (ZipEntry entry; Take(&entry); entry = {}) {
      memory += MemoryOf(entry);
      if (memory > kMostZipMemory)
        return Failure(platform::Code::kRefused, input_.Path(), why::kDirectoryTooLarge);
      directory->entries.push_back(std::move(entry));
    }
    directory->position = position_;
    return headers_.result();
  }

 private:
  // The entry whose header stands at the position, which then is behind it. False: there is no whole one.
  bool Take(ZipEntry* entry) {
    const std::size_t size = LocalHeaderSize(headers_.At(position_, kLocalHeaderSize));
    const std::string_view header = headers_.At(position_, size);
    if (size == 0 || header.size() < size) return false;
    const bool has_sizes = ParseLocalHeader(header, entry);
    entry->position = entry->directory_position = position_;
    const std::uint64_t begin = position_ + size;
    const bool is_open = entry->HasDescriptor() && (!has_sizes || entry->packed_size == 0);
    const bool is_folder = entry->name.ends_with('/') && IsBoundary(&headers_, begin);
    if (is_open && !is_folder) return TakeOpen(begin, entry);
    if (!has_sizes || entry->packed_size > input_.Size() - begin) return false;
    position_ = begin + entry->packed_size;
    if (entry->HasDescriptor()) position_ += DescriptorAt(begin, position_, entry);
    return true;
  }

  // The length of the descriptor of the content from `begin` to `end`; 0 when there is none.
  std::size_t DescriptorAt(std::uint64_t begin, std::uint64_t end, ZipEntry* entry) {
    for (const std::size_t width : {std::size_t{4}, std::size_t{8}}) {
      if (const std::size_t length = TakeDescriptor(&headers_, begin, end, width, entry)) return length;
    }
    return 0;
  }

  // Content whose size only its descriptor says. That is the first one that counts the bytes in front of it: it has
  // its signature, or one of the archive's headers stands behind it.
  bool TakeOpen(std::uint64_t begin, ZipEntry* entry) {
    ZipBytes scanned(input_, kScanBlock);
    for (std::uint64_t from = begin; from < input_.Size();) {
      const std::string_view block = scanned.At(from, kScanBlock);
      for (std::size_t place = block.find("PK"); place != block.npos; place = block.find("PK", place + 1)) {
        if (TakeOpenUpTo(begin, from + place, entry)) return true;
      }
      if (block.size() < 2) break;
      from += block.size() - 1;
    }
    return TakeOpenUpTo(begin, input_.Size(), entry);
  }

  // Does a descriptor of the content from `begin` on stand at `there`, or without a signature right before it?
  bool TakeOpenUpTo(std::uint64_t begin, std::uint64_t there, ZipEntry* entry) {
    const bool is_signed = headers_.At(there, 4) == kDescriptorSignature;
    if (!is_signed && !IsBoundary(&headers_, there)) return false;
    for (const std::size_t unsigned_length : {std::size_t{0}, std::size_t{12}, std::size_t{20}}) {
      if ((unsigned_length == 0) != is_signed || there - begin < unsigned_length) continue;
      const std::uint64_t end = there - unsigned_length;
      const std::size_t length = DescriptorAt(begin, end, entry);
      if (length == 0) continue;
      position_ = end + length;
      return true;
    }
    return false;
  }

  const ArchiveInput& input_;
  ZipBytes headers_;
  std::uint64_t position_ = 0;
};

// Of an end record at `position`, of either kind; anything when there is none.
bool CountAgrees(const ArchiveInput& input, std::uint64_t position, std::size_t count) {
  ZipBytes bytes(input, 56);
  const std::string_view record = bytes.At(position, 56);
  if (record.starts_with("PK\6\6") && record.size() >= 40) return LittleEndian(record, 32, 8) == count;
  if (record.starts_with("PK\5\6") && record.size() >= 12)
    return LittleEndian(record, 10, 2) == count % 65536;
  return true;
}

void SortByContent(std::vector<ZipEntry>* entries) {
  std::sort(entries->begin(), entries->end(), [](const ZipEntry& a, const ZipEntry& b) {
    return std::tie(a.name, a.crc, a.size, a.position) < std::tie(b.name, b.crc, b.size, b.position);
  });
}

}  // namespace

platform::Result WalkLocalHeaders(const ArchiveInput& input, ZipDirectory* directory) {
  *directory = {};
  return Walker(input).Walk(directory);
}

bool TakeDirectoryBehind(const ArchiveInput& input, ZipDirectory* directory, std::uint64_t* behind) {
  std::vector<ZipEntry>& walked = directory->entries;
  std::vector<ZipEntry> headers;
  headers.reserve(walked.size());
  if (!ReadZipHeaders(input, directory->position, input.Size(), &headers, behind).ok()) return false;
  if (headers.size() != walked.size() || !CountAgrees(input, *behind, headers.size())) return false;
  SortByContent(&headers);
  SortByContent(&walked);
  const bool agrees = std::equal(headers.begin(), headers.end(), walked.begin(),
                                 [](const ZipEntry& a, const ZipEntry& b) { return Agrees(b, a, true); });
  if (agrees) {
    for (std::size_t i = 0; i < headers.size(); ++i) headers[i].position = walked[i].position;
    walked = std::move(headers);
  }
  return agrees;
}

}  // namespace quendle::modules
