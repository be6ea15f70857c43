#include "archive/modules/rar/unpack/unpack50.h"

#include <algorithm>
#include <memory>
#include <span>
#include <string>
#include <utility>

#include "archive/modules/rar/unpack/code_lengths.h"
#include "archive/modules/rar/unpack/common_filters.h"

namespace quendle::modules {
namespace {

// The main alphabet, behind the literals.
constexpr unsigned kFilter = 256;
constexpr unsigned kRecentDistance = 258;
constexpr unsigned kLength = 262;

constexpr std::size_t kMainSymbols = 306;
constexpr std::size_t kDistanceSymbols = 64;
constexpr std::size_t kFarDistanceSymbols = 80;
constexpr std::size_t kLowDistanceSymbols = 16;
constexpr std::size_t kLengthSlots = 44;

// Of slots of lengths 8 to 43 and distances 4 to 79: two and one bits behind a leading one, and how many follow those.
//   lengths: 8 9 10 ⇒ 100b 101b 110b with 1 more
constexpr unsigned ExtraLengthBits(unsigned slot) {
  return slot / 4 - 1;
}
constexpr unsigned ExtraDistanceBits(unsigned slot) {
  return slot / 2 - 1;
}

template <typename Bits>
std::uint32_t TakeLength(unsigned slot, Bits* bits) {
  if (slot < 8) return slot + 2;
  const unsigned extra = ExtraLengthBits(slot);
  return 2 + ((4 | (slot & 3)) << extra) + bits->Take(extra);
}

// How much longer a match is than its slot says, because shorter ones so far back do not pay.
std::uint32_t ExtraLength(std::uint64_t distance) {
  return std::uint32_t{distance > 0x100} + std::uint32_t{distance > 0x2000} +
         std::uint32_t{distance > 0x40000};
}

std::uint32_t TakeFilterNumber(BitReader* bits) {
  const unsigned size = bits->Take(2) + 1;
  std::uint32_t number = 0;
  for (unsigned i = 0; i < size; ++i) number |= std::uint32_t{bits->TakeByte()} << (8 * i);
  return number;
}

}  // namespace

void Unpack50::BeginEntry(const PackedEntry& entry) {
  has_far_distances_ = entry.has_far_distances;
  is_last_block_ = false;
  block_end_ = 0;
  if (entry.is_solid) return window_.Grow(entry.window);
  window_.Reset(entry.window);
  recent_ = {};
  has_codes_ = false;
}

Unpacker::Step Unpack50::Decode(std::uint64_t until) {
  while (Made() < until) {
    const bool is_over = bits_.Position() == block_end_;
    if (is_over && is_last_block_) return Step::kEnd;
    const Step step = is_over ? BeginBlock() : DecodeSymbols(until);
    if (step != Step::kMore || bits_.IsPastEnd()) return step;
    if (bits_.Position() > block_end_) return Step::kDamaged;
  }
  return Step::kMore;
}

Unpacker::Step Unpack50::BeginBlock() {
  constexpr std::uint8_t kCheck = 0x5A;
  bits_.AlignToByte();
  const std::uint8_t flags = bits_.TakeByte();
  std::uint8_t check = kCheck ^ flags ^ bits_.TakeByte();
  const unsigned size_bytes = (flags >> 3 & 3) + 1;
  if (size_bytes > 3) return Step::kDamaged;
  std::uint32_t size = 0;
  for (unsigned i = 0; i < size_bytes; ++i) {
    const std::uint8_t byte = bits_.TakeByte();
    check ^= byte;
    size |= std::uint32_t{byte} << (8 * i);
  }
  if (check != 0 || size == 0) return Step::kDamaged;
  is_last_block_ = (flags & 0x40) != 0;
  block_end_ = bits_.Position() + 8 * (std::uint64_t{size} - 1) + (flags & 7) + 1;
  if ((flags & 0x80) != 0) has_codes_ = ReadCodes();
  return has_codes_ ? Step::kMore : Step::kDamaged;
}

bool Unpack50::ReadCodes() {
  const std::size_t distances = has_far_distances_ ? kFarDistanceSymbols : kDistanceSymbols;
  std::array<std::uint8_t, kMainSymbols + kFarDistanceSymbols + kLowDistanceSymbols + kLengthSlots> all{};
  std::span<std::uint8_t> lengths = std::span(all).first(all.size() - kFarDistanceSymbols + distances);
  if (!ReadCodeLengths(&bits_, lengths)) return false;
  for (const auto& [code, symbols] :
       {std::pair{&main_, kMainSymbols}, std::pair{&distances_, distances},
        std::pair{&low_distances_, kLowDistanceSymbols}, std::pair{&repeat_lengths_, kLengthSlots}}) {
    if (!code->Build(lengths.first(symbols))) return false;
    lengths = lengths.subspan(symbols);
  }
  return true;
}

Unpacker::Step Unpack50::DecodeSymbols(std::uint64_t until) {
  const unsigned stop = DecodeMany(until);
  if (stop == kFilter) return ReadFilter();
  if (stop == HuffmanCode::kNone) return Step::kDamaged;
  if (Made() >= until) return Step::kMore;
  const unsigned symbol = main_.Decode(&bits_);
  if (symbol == kFilter) return ReadFilter();
  if (symbol > kFilter) return DecodeMatch(symbol, &bits_, &recent_, &window_) ? Step::kMore : Step::kDamaged;
  window_.Put(static_cast<std::uint8_t>(symbol));
  return Step::kMore;
}

// Decodes as many symbols as can be without looking at each whether the block, what is at hand of it, or the window
// ends. What it stopped at: kFilter, kNone at a fault, 0 if at nothing.
unsigned Unpack50::DecodeMany(std::uint64_t until) {
  BitCursor bits = bits_.Lend(block_end_);
  WindowCursor output = window_.Lend(until - Made());
  Recent recent = recent_;
  unsigned stop = 0;
  while (bits.IsFarFromEnd() && output.HasRoom()) {
    bits.Refill();
    unsigned symbol = main_.Decode(&bits);
    if (symbol < kFilter) {
      output.Put(static_cast<std::uint8_t>(symbol));
      symbol = main_.Decode(&bits);
      if (symbol < kFilter) {
        output.Put(static_cast<std::uint8_t>(symbol));
        continue;
      }
    }
    if (symbol == kFilter) {
      stop = kFilter;
      break;
    }
    if (!DecodeMatch(symbol, &bits, &recent, &output)) {
      stop = HuffmanCode::kNone;
      break;
    }
  }
  bits_.TakeBack(bits);
  window_.TakeBack(output);
  recent_ = recent;
  return stop;
}

// `bits` has 26 bits at least.
template <typename Bits, typename Output>
[[gnu::always_inline]] inline bool Unpack50::DecodeMatch(unsigned symbol, Bits* bits, Recent* recent,
                                                         Output* output) const {
  auto& distances = recent->distances;
  if (symbol >= kLength) {
    if (symbol >= kMainSymbols) return false;
    const std::uint32_t length = TakeLength(symbol - kLength, bits);
    const std::uint64_t distance = DecodeDistance(bits);
    distances = {distance, distances[0], distances[1], distances[2]};
    recent->length = length + ExtraLength(distance);
  } else if (symbol >= kRecentDistance) {
    const unsigned place = symbol - kRecentDistance;
    const std::uint64_t distance = distances[place];
    for (unsigned i = place; i > 0; --i) distances[i] = distances[i - 1];
    distances[0] = distance;
    const unsigned slot = repeat_lengths_.Decode(bits);
    if (slot >= kLengthSlots) return false;
    recent->length = TakeLength(slot, bits);
  } else if (recent->length == 0) {
    return true;
  }
  return output->Copy(distances[0], recent->length);
}

// 0 for bits that stand for none.
template <typename Bits>
[[gnu::always_inline]] inline std::uint64_t Unpack50::DecodeDistance(Bits* bits) const {
  constexpr unsigned kLowBits = 4;
  bits->Refill();
  const unsigned slot = distances_.Decode(bits);
  if (slot < 4) return slot + 1;
  if (slot >= kFarDistanceSymbols) return 0;
  const unsigned extra = ExtraDistanceBits(slot);
  const std::uint64_t distance = 1 + (std::uint64_t{2 | (slot & 1)} << extra);
  if (extra < kLowBits) return distance + bits->Take(extra);
  const std::uint64_t high = bits->TakeLong(extra - kLowBits) << kLowBits;
  bits->Refill();
  const unsigned low = low_distances_.Decode(bits);
  return low < kLowDistanceSymbols ? distance + high + low : 0;
}

Unpacker::Step Unpack50::ReadFilter() {
  constexpr std::uint32_t kShortest = 4;
  constexpr std::uint32_t kLongest = 4U << 20;
  const std::uint64_t start = Made() + TakeFilterNumber(&bits_);
  const std::uint32_t length = TakeFilterNumber(&bits_);
  if (length < kShortest || length > kLongest) return Step::kDamaged;
  enum : unsigned { kDelta, kE8, kE8E9, kArm };
  std::unique_ptr<Filter> filter;
  const unsigned type = bits_.Take(3);
  switch (type) {
    case kDelta:
      filter = std::make_unique<DeltaFilter>(bits_.Take(5) + 1);
      break;
    case kE8:
      filter = std::make_unique<X86Filter>(false, X86Filter::Positions::k24Bits);
      break;
    case kE8E9:
      filter = std::make_unique<X86Filter>(true, X86Filter::Positions::k24Bits);
      break;
    case kArm:
      filter = std::make_unique<ArmFilter>();
      break;
    default:
      problem_ = why::kUnsupportedMethod("RAR 5 filter " + std::to_string(type));
      return Step::kUnsupported;
  }
  return filters_.Add(start, length, std::move(filter)) ? Step::kMore : Step::kDamaged;
}

}  // namespace quendle::modules
