#include "archive/modules/rar/unpack/unpack29.h"

#include <algorithm>
#include <span>
#include <utility>
#include <vector>

#include "archive/modules/rar/unpack/code_lengths.h"
#include "archive/modules/rar/unpack/lz_tables.h"

namespace quendle::modules {
namespace {

// Headers may name less, which only says what the packer made use of.
constexpr std::uint64_t kWindow = 4U << 20;

// Symbols of the main code: below the first literals.
constexpr unsigned kEndOfBlock = 256;
constexpr unsigned kLastMatch = 258;       // of the length and distance of the last one
constexpr unsigned kRecentDistance = 259;  // of one of the last four distances
constexpr unsigned kShortMatch = 263;      // of two bytes
constexpr unsigned kLongMatch = 271;

constexpr unsigned kLowBits = 4;  // of far distances, which have a code of their own
constexpr unsigned kSameLow = 16;
constexpr unsigned kSameLows = 15;

constexpr int kUsualEscape = 2;

}  // namespace

void Unpack29::BeginEntry(const PackedEntry& entry) {
  if (!entry.is_solid) Forget();
  programs_.Begin(entry.is_solid);
  if (block_ == Block::kPpm) block_ = Block::kNone;
}

void Unpack29::Forget() {
  window_.Reset(kWindow);
  block_ = Block::kNone;
  lengths_.fill(0);
  recent_ = {};
  last_length_ = 0;
  has_model_ = false;
  escape_ = kUsualEscape;
}

Unpacker::Step Unpack29::Decode(std::uint64_t until) {
  Step step = Step::kMore;
  while (step == Step::kMore && Made() < until && !bits_.IsPastEnd()) {
    step = block_ == Block::kLz ? DecodeLz(until) : block_ == Block::kPpm ? DecodePpm(until) : BeginBlock();
  }
  return step;
}

Unpacker::Step Unpack29::BeginBlock() {
  bits_.AlignToByte();
  if (bits_.Take(1) == 1) return BeginPpmBlock();
  if (!ReadCodes()) return Step::kDamaged;
  block_ = Block::kLz;
  return Step::kMore;
}

bool Unpack29::ReadCodes() {
  if (bits_.Take(1) == 0) lengths_.fill(0);
  low_distance_ = low_repeats_ = 0;
  if (!ReadCodeLengths(&bits_, lengths_)) return false;
  std::span<const std::uint8_t> left = lengths_;
  for (const auto& [code, symbols] :
       {std::pair{&main_, kMainSymbols}, std::pair{&distances_, kDistanceSymbols},
        std::pair{&low_distances_, kLowDistanceSymbols},
        std::pair{&repeated_lengths_, kRepeatedLengthSymbols}}) {
    if (!code->Build(left.first(symbols))) return false;
    left = left.subspan(symbols);
  }
  return true;
}

Unpacker::Step Unpack29::DecodeLz(std::uint64_t until) {
  while (Made() < until) {
    const unsigned symbol = main_.Decode(&bits_);
    if (symbol < kEndOfBlock) {
      window_.Put(static_cast<std::uint8_t>(symbol));
    } else if (symbol >= kLastMatch) {
      if (!DecodeMatch(symbol)) return Step::kDamaged;
    } else if (symbol == kEndOfBlock) {
      return EndLzBlock();
    } else if (!ReadFilter([this] { return bits_.TakeByte(); })) {
      return Step::kDamaged;
    }
  }
  return Step::kMore;
}

// Another block follows, or the entry ends; a solid one behind it goes on with these codes, or with a block.
Unpacker::Step Unpack29::EndLzBlock() {
  const bool goes_on = bits_.Take(1) == 1;
  if (goes_on || bits_.Take(1) == 1) block_ = Block::kNone;
  return goes_on ? Step::kMore : Step::kEnd;
}

bool Unpack29::DecodeMatch(unsigned symbol) {
  if (symbol >= kLongMatch) {
    if (symbol == HuffmanCode::kNone) return false;
    const std::uint32_t length = 3 + TakeValue(kLengthSlots[symbol - kLongMatch], &bits_);
    // The farther away, the longer a match has to be to be worth it.
    const std::uint32_t distance = DecodeDistance();
    return CopyFrom(distance, length + (distance >= 0x2000) + (distance >= 0x40000));
  }
  if (symbol >= kShortMatch)
    return CopyFrom(1 + TakeValue(kShortDistanceSlots[symbol - kShortMatch], &bits_), 2);
  if (symbol >= kRecentDistance) return DecodeRepeatedDistance(symbol - kRecentDistance);
  // Before any match there is nothing that could be repeated.
  if (last_length_ == 0) return !bits_.IsPastEnd();
  return window_.Copy(recent_[0], last_length_);
}

bool Unpack29::DecodeRepeatedDistance(unsigned age) {
  const unsigned slot = repeated_lengths_.Decode(&bits_);
  if (slot == HuffmanCode::kNone) return false;
  const auto place = recent_.begin() + age;
  std::rotate(recent_.begin(), place, place + 1);
  last_length_ = 2 + TakeValue(kLengthSlots[slot], &bits_);
  return window_.Copy(recent_[0], last_length_);
}

// 0: the bits are no distance.
std::uint32_t Unpack29::DecodeDistance() {
  const unsigned slot = distances_.Decode(&bits_);
  if (slot == HuffmanCode::kNone) return 0;
  const auto [base, extra] = kDistanceSlots[slot];
  if (extra < kLowBits) return 1 + base + bits_.Take(extra);
  const std::uint32_t high = bits_.Take(extra - kLowBits) << kLowBits;
  if (low_repeats_ > 0) {
    --low_repeats_;
  } else {
    const unsigned low = low_distances_.Decode(&bits_);
    if (low == HuffmanCode::kNone) return 0;
    if (low == kSameLow) {
      low_repeats_ = kSameLows;
    } else {
      low_distance_ = low;
    }
  }
  return 1 + base + high + low_distance_;
}

bool Unpack29::CopyFrom(std::uint32_t distance, std::uint32_t length) {
  recent_ = {distance, recent_[0], recent_[1], recent_[2]};
  last_length_ = length;
  return window_.Copy(distance, length);
}

Unpacker::Step Unpack29::BeginPpmBlock() {
  constexpr unsigned kHasEscape = 0x40;
  constexpr unsigned kIsNew = 0x20;
  const unsigned flags = bits_.Take(7);
  const bool is_new = (flags & kIsNew) != 0;
  const std::size_t memory = is_new ? std::size_t{bits_.TakeByte() + 1U} << 20 : 0;
  if ((flags & kHasEscape) != 0) escape_ = bits_.TakeByte();
  if (is_new) {
    unsigned order = (flags & 0x1F) + 1;
    if (order > 16) order = 16 + (order - 16) * 3;
    if (order == 1) return Step::kDamaged;
    if (!model_.Restart(order, memory)) {
      problem_ = why::kNotEnoughMemory;
      return Step::kDamaged;
    }
    has_model_ = true;
  }
  if (!has_model_ || !model_.HasModel()) return Step::kDamaged;
  decoder_.Begin(&bits_);
  block_ = Block::kPpm;
  return Step::kMore;
}

Unpacker::Step Unpack29::DecodePpm(std::uint64_t until) {
  while (Made() < until) {
    const int symbol = model_.Decode(&decoder_);
    if (symbol < 0) return Step::kDamaged;
    if (symbol != escape_) {
      window_.Put(static_cast<std::uint8_t>(symbol));
    } else if (const Step step = DecodeEscaped(); step != Step::kMore || block_ == Block::kNone) {
      return step;
    }
  }
  return Step::kMore;
}

// What the symbol behind an escape character says.
Unpacker::Step Unpack29::DecodeEscaped() {
  enum { kEndOfPpmBlock = 0, kEndOfEntry = 2, kPpmFilter = 3, kMatch = 4, kRun = 5 };
  const int symbol = model_.Decode(&decoder_);
  bool is_ok = symbol >= 0 && !bits_.IsPastEnd();
  switch (symbol) {
    case kEndOfPpmBlock:
    case kEndOfEntry:
      block_ = Block::kNone;
      return symbol == kEndOfEntry ? Step::kEnd : Step::kMore;
    case kPpmFilter:
      is_ok = is_ok && ReadFilter([this] { return model_.Decode(&decoder_); });
      break;
    case kMatch:
    case kRun:
      is_ok = is_ok && DecodePpmMatch(symbol == kRun);
      break;
    default:
      if (is_ok) window_.Put(static_cast<std::uint8_t>(escape_));
  }
  return is_ok ? Step::kMore : Step::kDamaged;
}

bool Unpack29::DecodePpmMatch(bool is_of_last_byte) {
  const int distance_bytes = is_of_last_byte ? 0 : 3;
  std::uint32_t distance = 0;
  for (int i = 0; i < distance_bytes; ++i) {
    const int byte = model_.Decode(&decoder_);
    if (byte < 0) return false;
    distance = distance << 8 | static_cast<std::uint32_t>(byte);
  }
  const int length = model_.Decode(&decoder_);
  if (length < 0) return false;
  return is_of_last_byte ? window_.Copy(1, static_cast<std::size_t>(length) + 4)
                         : window_.Copy(distance + 2, static_cast<std::size_t>(length) + 32);
}

// `next_byte` says less than 0 if there is none.
bool Unpack29::ReadFilter(const std::function<int()>& next_byte) {
  constexpr std::size_t kOneMoreByte = 7;
  constexpr std::size_t kTwoBytes = 8;
  const int flags = next_byte();
  std::size_t size = (static_cast<unsigned>(flags) & 7) + 1;
  if (size == kOneMoreByte) {
    size += static_cast<std::size_t>(std::max(next_byte(), 0));
  } else if (size == kTwoBytes) {
    size = static_cast<std::size_t>(std::max(next_byte(), 0)) << 8;
    size += static_cast<std::size_t>(std::max(next_byte(), 0));
  }
  std::vector<std::uint8_t> record;
  int byte = flags;
  for (; size > 0 && byte >= 0 && !bits_.IsPastEnd(); --size) {
    byte = next_byte();
    record.push_back(static_cast<std::uint8_t>(byte));
  }
  return size == 0 && byte >= 0 && programs_.Add(static_cast<std::uint8_t>(flags), record, Made(), &filters_);
}

}  // namespace quendle::modules
