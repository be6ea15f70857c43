#include "archive/modules/cab/cab_blocks.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "archive/modules/common/little_endian.h"

namespace quendle::modules {
namespace {

constexpr std::size_t kHeaderSize = 8;
constexpr std::size_t kLargestPacked = 0xFFFF;
constexpr std::string_view kMszipMark = "CK";
// Of a block of deflate's, not the last one, that stores CabBlocks::kBlock bytes.
constexpr std::string_view kStoredHeader("\0\x00\x80\xFF\x7F", 5);
// Packed bytes are read to there. What is put in front of them later ends in place of their kMszipMark.
constexpr std::size_t kPackedAt = kStoredHeader.size() + CabBlocks::kBlock - kMszipMark.size();

// As the format has it: numbers of four bytes, lowest first, and what is left of less with the highest first.
std::uint32_t Sum(std::string_view bytes) {
  std::uint64_t wide = 0;
  std::uint64_t word = 0;
  for (; bytes.size() >= sizeof(word); bytes.remove_prefix(sizeof(word))) {
    std::memcpy(&word, bytes.data(), sizeof(word));
    wide ^= word;
  }
  const std::string_view both(reinterpret_cast<const char*>(&wide), sizeof(wide));
  auto sum = static_cast<std::uint32_t>(LittleEndian(both, 0, 4) ^ LittleEndian(both, 4, 4));
  if (bytes.size() >= 4) {
    sum ^= static_cast<std::uint32_t>(LittleEndian(bytes, 0, 4));
    bytes.remove_prefix(4);
  }
  std::uint32_t rest = 0;
  for (const char c : bytes) rest = rest << 8 | static_cast<unsigned char>(c);
  return sum ^ rest;
}

}  // namespace

CabBlocks::CabBlocks(const ArchiveInput& input)
    : input_(input), decompressor_(libdeflate_alloc_decompressor()), bytes_(kPackedAt + kLargestPacked) {}

void CabBlocks::Begin(const CabFolder& folder) {
  left_ = folder;
  has_history_ = false;
  had_last_ = false;
  problem_ = {};
}

std::size_t CabBlocks::Fail(Reason reason) {
  problem_ = std::move(reason);
  return 0;
}

bool CabBlocks::Read(char* bytes, std::size_t size) {
  std::size_t got = 0;
  if (size > left_.end - left_.begin) {
    problem_ = why::kCabinetDamaged;
  } else if (const auto result = input_.ReadAt(left_.begin, bytes, size, &got); !result.ok()) {
    problem_ = result.reason;
  } else if (got < size) {
    problem_ = why::kCabinetUnreadable;
  }
  left_.begin += got;
  return problem_.empty();
}

std::size_t CabBlocks::Next(char* to) {
  if (!problem_.empty()) return Fail(why::kDataBeforeDamaged);
  if (!decompressor_) return Fail(why::kNotEnoughMemory);
  if (had_last_ || left_.blocks == 0) return Fail(why::kCabinetDamaged);
  --left_.blocks;
  std::array<char, kHeaderSize> header{};
  if (!Read(header.data(), header.size())) return 0;
  const std::string_view fields(header.data(), header.size());
  const auto sum = static_cast<std::uint32_t>(LittleEndian(fields, 0, 4));
  const std::string_view packed(bytes_.data() + kPackedAt,
                                static_cast<std::size_t>(LittleEndian(fields, 4, 2)));
  const auto size = static_cast<std::size_t>(LittleEndian(fields, 6, 2));
  if (size == 0 || size > kBlock) return Fail(why::kCabinetDamaged);
  if (!Read(bytes_.data() + kPackedAt, packed.size())) return 0;
  // Without a sum there is nothing to compare.
  if (sum != 0 && (Sum(packed) ^ Sum(fields.substr(4))) != sum) return Fail(why::kSomeChecksumWrong);
  if (Unpack(packed, size, to) != size) return Fail(why::kPackedDataDamaged);
  has_history_ = true;
  had_last_ = size < kBlock;
  return size;
}

// Gives how many bytes came of it.
std::size_t CabBlocks::Unpack(std::string_view packed, std::size_t size, char* to) {
  if (left_.is_mszip) return packed.starts_with(kMszipMark) ? Inflate(packed.size(), to) : 0;
  return packed.size() == size ? packed.copy(to, size) : 0;
}

// The library knows of nothing that came before, and so unpacks the block before once more: stored, which is quick.
std::size_t CabBlocks::Inflate(std::size_t packed, char* to) {
  const std::size_t history = has_history_ ? kBlock : 0;
  const std::size_t front = has_history_ ? kStoredHeader.size() + kBlock : 0;
  char* const begin = bytes_.data() + kPackedAt + kMszipMark.size() - front;
  if (has_history_)
    std::memcpy(std::copy(kStoredHeader.begin(), kStoredHeader.end(), begin), to - kBlock, kBlock);
  std::size_t used = 0;
  std::size_t made = 0;
  const libdeflate_result result =
      libdeflate_deflate_decompress_ex(decompressor_.get(), begin, front + packed - kMszipMark.size(),
                                       to - history, history + kBlock + kSlack, &used, &made);
  return result == LIBDEFLATE_SUCCESS ? made - history : 0;
}

}  // namespace quendle::modules
