#include "archive/modules/rar/unpack/unpack15.h"

#include <bit>
#include <numeric>
#include <utility>

namespace quendle::modules {
namespace {

constexpr std::uint64_t kWindow = 64U << 10;

const FixedCodes15& Codes() {
  static const FixedCodes15 codes;
  return codes;
}

unsigned TakeLiteralSymbol(unsigned average, BitReader* bits) {
  const std::size_t code =
      std::size_t{average >= 0xE00} + (average >= 0x3600) + (average >= 0x5E00) + (average >= 0x7600);
  return Codes().values[code].Decode(bits);
}

// Of what comes seldom, and decides on the next eight symbols.
unsigned TakeFlagSymbol(BitReader* bits) {
  return Codes().values[2].Decode(bits);
}

// The new average after `value`, which counts by one part in two to the `shift`.
unsigned Averaged(unsigned average, unsigned value, unsigned shift) {
  average += value;
  return average - (average >> shift);
}

void Weigh(unsigned* more, unsigned* less) {
  *more += 16;
  if (*more <= 0xFF) return;
  *more = 0x90;
  *less >>= 1;
}

}  // namespace

Unpack15::State::State() {
  far_distances.Recount();
  std::iota(near_distances.begin(), near_distances.end(), std::uint8_t{0});
}

void Unpack15::BeginEntry(const PackedEntry& entry) {
  if (!entry.is_solid) Reset();
  in_literal_run_ = false;
  flags_left_ = 0;
  repetitions_ = 0;
}

void Unpack15::Reset() {
  window_.Reset(kWindow);
  state_ = {};
}

Unpacker::Step Unpack15::Decode(std::uint64_t until) {
  while (Made() < until && !bits_.IsPastEnd())
    if (!DecodeNext()) return Step::kDamaged;
  return Step::kMore;
}

// One flag for what came more often lately, two for the other.
bool Unpack15::DecodeNext() {
  if (in_literal_run_) return DecodeLiteral();
  const bool is_match_likely = state_.match_weight > state_.literal_weight;
  const auto is_likely = TakeFlag();
  if (!is_likely) return false;
  if (*is_likely) return is_match_likely ? DecodeLongMatch() : DecodeLiteral();
  const auto is_long = TakeFlag();
  if (!is_long) return false;
  if (!*is_long) return DecodeShortMatch();
  return is_match_likely ? DecodeLiteral() : DecodeLongMatch();
}

std::optional<bool> Unpack15::TakeFlag() {
  if (flags_left_ == 0) {
    const unsigned place = TakeFlagSymbol(&bits_);
    if (place > 0xFF) return std::nullopt;
    flags_ = state_.flags.Use(place, 0xFF);
    flags_left_ = 8;
  }
  return (flags_ >> --flags_left_ & 1) != 0;
}

bool Unpack15::DecodeLiteral() {
  unsigned place = TakeLiteralSymbol(state_.literal, &bits_);
  if (in_literal_run_) {
    if (place == 0) return DecodeInLiteralRun();
    --place;
  } else {
    place &= 0xFF;
    in_literal_run_ = ++state_.literals_in_row > 16 && flags_left_ == 0;
  }
  state_.literal = Averaged(state_.literal, place, 8);
  Weigh(&state_.literal_weight, &state_.match_weight);
  window_.Put(state_.literals.Use(place, 0xA1));
  return true;
}

// What is no literal: the run's end or a match that does not end it.
bool Unpack15::DecodeInLiteralRun() {
  if (bits_.Take(1) != 0) {
    in_literal_run_ = false;
    state_.literals_in_row = 0;
    return true;
  }
  const std::uint32_t length = 3 + bits_.Take(1);
  const std::uint32_t distance = TakeFlagSymbol(&bits_) << 5;
  return window_.Copy(distance | bits_.Take(5), length);
}

bool Unpack15::DecodeShortMatch() {
  state_.literals_in_row = 0;
  if (repetitions_ == 2) {
    if (bits_.Take(1) != 0) return CopyLast();
    repetitions_ = 0;
  }
  const unsigned selector = TakeSelector(state_.selector >= 37, state_.has_selector_14, &bits_);
  if (selector == 9) {
    ++repetitions_;
    return CopyLast();
  }
  repetitions_ = 0;
  if (selector < 9) return DecodeNear(selector);
  return selector < 14 ? DecodeRecent(selector - 10) : DecodeFar();
}

// By its length less two, at one of 256 distances that come up often.
bool Unpack15::DecodeNear(unsigned selector) {
  state_.selector = Averaged(state_.selector, selector, 4);
  const unsigned place = TakeFlagSymbol(&bits_) & 0xFF;
  const std::uint32_t distance = state_.near_distances[place] + 1U;
  if (place > 0) std::swap(state_.near_distances[place], state_.near_distances[place - 1]);
  return CopyNew(distance, selector + 2);
}

// A length that only the newest could have switches the code of selectors.
bool Unpack15::DecodeRecent(unsigned age) {
  const std::uint32_t distance = state_.recent.Get(age);
  std::uint32_t length = 2 + Codes().short_lengths.Decode(&bits_);
  if (length == 257 && age == 0) {
    state_.has_selector_14 = !state_.has_selector_14;
    return true;
  }
  length += (distance > 0x100) + (distance >= state_.far_limit);
  return CopyNew(distance, length);
}

// From the farther half of the window.
bool Unpack15::DecodeFar() {
  state_.last_length = 5 + Codes().long_lengths.Decode(&bits_);
  state_.last_distance = 0x8000 | bits_.Take(15);
  return CopyLast();
}

bool Unpack15::DecodeLongMatch() {
  state_.literals_in_row = 0;
  Weigh(&state_.match_weight, &state_.literal_weight);
  const unsigned average_length = state_.length;
  const unsigned nearness = state_.nearness;
  const unsigned raw_length = TakeRawLength();
  state_.length = Averaged(state_.length, raw_length, 5);

  const std::size_t code = std::size_t{state_.distance >= 0x700} + (state_.distance >= 0x2900);
  const unsigned place = Codes().values[code].Decode(&bits_);
  if (place > 0xFF) return false;
  state_.distance = Averaged(state_.distance, place, 8);
  const std::uint32_t high = state_.far_distances.Use(place, 0xFF);
  const std::uint32_t distance = high << 7 | bits_.Take(7);

  std::uint32_t length = raw_length + 3;
  if (distance >= state_.far_limit) ++length;
  if (distance <= 0x100) length += 8;
  if (raw_length == 0 && distance <= state_.far_limit) {
    state_.nearness = Averaged(state_.nearness, 1, 8);
  } else if (raw_length != 1 && raw_length != 4 && state_.nearness > 0) {
    --state_.nearness;
  }
  const bool is_far_usual = nearness > 0xB0 || (state_.literal >= 0x2A00 && average_length < 0x40);
  state_.far_limit = is_far_usual ? 0x7F00 : 0x2001;
  return CopyNew(distance, length);
}

// A number of zeros as long as matches are short, or a code.
unsigned Unpack15::TakeRawLength() {
  if (state_.length >= 122) return Codes().long_lengths.Decode(&bits_);
  if (state_.length >= 64) return Codes().short_lengths.Decode(&bits_);
  constexpr unsigned kMostZeros = 8;
  const auto zeros =
      static_cast<unsigned>(std::countl_zero(static_cast<std::uint8_t>(bits_.Peek(kMostZeros))));
  if (zeros < kMostZeros) {
    bits_.Skip(zeros + 1);
    return zeros;
  }
  bits_.Skip(kMostZeros);
  return bits_.Take(8);
}

bool Unpack15::CopyNew(std::uint32_t distance, std::uint32_t length) {
  state_.recent.Push(distance);
  state_.last_distance = distance;
  state_.last_length = length;
  return window_.Copy(distance, length);
}

}  // namespace quendle::modules
