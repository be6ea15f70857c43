// Packed bytes of two entries, the second of which may be solid, for each way of unpacking: once with all packed bytes
// at hand and once more with one at a time. That takes other ways through the decoder and must come to the same, as it
// must when the decoder has unpacked something else before.
#include <algorithm>
#include <cstdlib>
#include <memory>
#include <span>
#include <string>

#include "archive/modules/common/checksum.h"
#include "archive/modules/rar/unpack/unpack15.h"
#include "archive/modules/rar/unpack/unpack20.h"
#include "archive/modules/rar/unpack/unpack29.h"
#include "archive/modules/rar/unpack/unpack50.h"

namespace {

using namespace quendle;
using namespace quendle::modules;

constexpr std::uint64_t kMostBytes = 4U << 20;
constexpr std::size_t kHeader = 8;

void Check(bool holds) {
  if (!holds) std::abort();
}

class Bytes final : public PackedSource {
 public:
  Bytes(std::span<const std::uint8_t> bytes, std::size_t at_once) : left_(bytes), at_once_(at_once) {}
  std::size_t Read(std::uint8_t* buffer, std::size_t size) override {
    Check(size > 0);
    const auto piece = left_.first(std::min({size, at_once_, left_.size()}));
    std::copy(piece.begin(), piece.end(), buffer);
    left_ = left_.subspan(piece.size());
    return piece.size();
  }
  const Reason& Problem() const override { return none_; }

 private:
  std::span<const std::uint8_t> left_;
  std::size_t at_once_;
  Reason none_;
};

std::unique_ptr<Unpacker> MakeUnpacker(unsigned way) {
  if (way == 0) return std::make_unique<Unpack15>();
  if (way == 1) return std::make_unique<Unpack20>();
  if (way == 2) return std::make_unique<Unpack29>();
  return std::make_unique<Unpack50>();
}

// What came of an entry, in words.
std::string Unpack(Unpacker* unpacker, Bytes source, const PackedEntry& entry, ReadStatus* status) {
  unpacker->Begin(&source, entry);
  std::uint64_t given = 0;
  Crc32Sum sum;
  std::string_view piece;
  while (given < kMostBytes && (*status = unpacker->Read(&piece)) == ReadStatus::kOk) {
    Check(!piece.empty());
    given += piece.size();
    Check(!entry.size || given <= *entry.size);
    sum.Add(piece);
  }
  if (given >= kMostBytes) return "much";
  Check((*status == ReadStatus::kEnd) == unpacker->Problem().empty());
  Check(unpacker->Read(&piece) == *status && piece.empty());
  return std::to_string(given) + " " + std::to_string(sum.Value()) + " " +
         std::to_string(static_cast<int>(*status));
}

std::string UnpackBoth(Unpacker* unpacker, unsigned way, const std::uint8_t* data, std::size_t size,
                       std::size_t at_once) {
  const std::span<const std::uint8_t> packed(data + kHeader, size - kHeader);
  const std::size_t first = std::min<std::size_t>(packed.size(), std::size_t{data[6]} << 8 | data[7]);
  PackedEntry entry;
  entry.window = std::uint64_t{128U << 10} << (data[1] & 3);
  entry.has_far_distances = way == 4;
  if ((data[0] & 0x40) == 0) entry.size = std::uint64_t{data[2]} << 8 | data[3];
  ReadStatus status{};
  std::string result = Unpack(unpacker, {packed.first(first), at_once}, entry, &status);
  entry.is_solid = (data[0] & 0x80) != 0;
  if (status != ReadStatus::kEnd && entry.is_solid) return result;
  entry.window <<= data[1] >> 2 & 3;
  if (entry.size) entry.size = std::uint64_t{data[4]} << 8 | data[5];
  return result + ", " + Unpack(unpacker, {packed.subspan(first), at_once}, entry, &status);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < kHeader) return 0;
  const unsigned way = (data[0] & 7U) % 5;
  const auto unpacker = MakeUnpacker(way);
  const std::string at_once = UnpackBoth(unpacker.get(), way, data, size, size);
  Check(at_once == UnpackBoth(unpacker.get(), way, data, size, 1));
  return 0;
}
