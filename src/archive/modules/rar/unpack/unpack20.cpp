#include "archive/modules/rar/unpack/unpack20.h"

#include <algorithm>
#include <cstddef>
#include <span>

#include "archive/modules/rar/unpack/lz_tables.h"

namespace quendle::modules {
namespace {

constexpr std::uint64_t kWindow = 1U << 20;

enum Code : std::size_t { kMain, kDistance, kRepeatedLength };

constexpr std::size_t kMainSymbols = 298;
constexpr std::size_t kDistanceSymbols = 48;
constexpr std::size_t kRepeatedLengthSymbols = 28;

// Symbols of the main code: below the first literals, and matches ...
constexpr unsigned kLastMatch = 256;       // of the length and distance of the last one
constexpr unsigned kRecentDistance = 257;  // of one of the last four distances
constexpr unsigned kShortMatch = 261;      // of two bytes
constexpr unsigned kNewCodes = 269;
constexpr unsigned kLongMatch = 270;

constexpr unsigned kNewAudioCodes = 256;

// Lengths of codes, each by a symbol of a code for lengths.
bool ReadLengths(BitReader* bits, std::span<std::uint8_t> lengths) {
  std::array<std::uint8_t, 19> code_lengths;
  for (auto& length : code_lengths) length = static_cast<std::uint8_t>(bits->Take(4));
  HuffmanCode code;
  if (!code.Build(code_lengths)) return false;
  for (std::size_t i = 0; i < lengths.size();) {
    const unsigned symbol = code.Decode(bits);
    if (symbol < 16) {
      lengths[i] = (lengths[i] + symbol) & 15;
      ++i;
      continue;
    }
    if (symbol == HuffmanCode::kNone || (symbol == 16 && i == 0)) return false;
    const std::uint32_t run = symbol == 16   ? 3 + bits->Take(2)
                              : symbol == 17 ? 3 + bits->Take(3)
                                             : 11 + bits->Take(7);
    const std::size_t count = std::min<std::size_t>(run, lengths.size() - i);
    std::fill_n(lengths.begin() + static_cast<std::ptrdiff_t>(i), count,
                symbol == 16 ? lengths[i - 1] : std::uint8_t{0});
    i += count;
  }
  return true;
}

}  // namespace

bool Unpack20::Codes::Read(BitReader* bits) {
  is_audio = bits->Take(1) != 0;
  if (bits->Take(1) == 0) lengths.fill(0);
  std::array<std::size_t, kMostChannels> sizes = {kMainSymbols, kDistanceSymbols, kRepeatedLengthSymbols};
  if (is_audio) {
    channels = bits->Take(2) + 1;
    if (channel >= channels) channel = 0;
    sizes.fill(0);
    std::fill_n(sizes.begin(), channels, kAudioSymbols);
  }
  std::span<std::uint8_t> left = lengths;
  std::size_t all = 0;
  for (const std::size_t size : sizes) all += size;
  if (!ReadLengths(bits, left.first(all))) return false;
  for (std::size_t i = 0; i < sizes.size(); ++i) {
    if (!codes[i].Build(left.first(sizes[i]))) return false;
    left = left.subspan(sizes[i]);
  }
  return true;
}

void Unpack20::BeginEntry(const PackedEntry& entry) {
  if (!entry.is_solid) Reset();
}

void Unpack20::Reset() {
  window_.Reset(kWindow);
  codes_ = {};
  has_codes_ = false;
  distances_ = {};
  last_length_ = 0;
  channels_ = {};
  audio_step_ = 0;
}

Unpacker::Step Unpack20::Decode(std::uint64_t until) {
  if (!has_codes_ && !ReadCodes()) return Step::kDamaged;
  while (Made() < until && !bits_.IsPastEnd())
    if (codes_.is_audio ? !DecodeAudio(until) : !DecodeMatches(until)) return Step::kDamaged;
  return Step::kMore;
}

// Behind the last byte there may be the codes that a solid entry which follows begins with. What looks like them but is cut
// off is what fills the last bytes up.
std::optional<Unpacker::Step> Unpack20::EndWithoutMark() {
  if (!has_codes_) return Step::kEnd;
  const HuffmanCode& code = codes_.is_audio ? codes_.codes[codes_.channel] : codes_.codes[kMain];
  if (code.Decode(&bits_) != (codes_.is_audio ? kNewAudioCodes : kNewCodes)) return Step::kEnd;
  Codes next = codes_;
  if (next.Read(&bits_) && !bits_.IsPastEnd()) codes_ = next;
  return Step::kEnd;
}

bool Unpack20::ReadCodes() {
  return has_codes_ = codes_.Read(&bits_);
}

// Up to the next codes, which are read; false: what comes is damaged.
bool Unpack20::DecodeAudio(std::uint64_t until) {
  while (Made() < until) {
    unsigned& channel = codes_.channel;
    const unsigned symbol = codes_.codes[channel].Decode(&bits_);
    if (symbol == kNewAudioCodes) return ReadCodes();
    if (symbol == HuffmanCode::kNone) return false;
    window_.Put(channels_[channel].Next(symbol, &audio_step_));
    if (++channel == codes_.channels) channel = 0;
  }
  return true;
}

// The same for matches and literals.
bool Unpack20::DecodeMatches(std::uint64_t until) {
  while (Made() < until) {
    const unsigned symbol = codes_.codes[kMain].Decode(&bits_);
    if (symbol < kLastMatch) {
      window_.Put(static_cast<std::uint8_t>(symbol));
    } else if (symbol == kNewCodes) {
      return ReadCodes();
    } else if (!DecodeMatch(symbol)) {
      return false;
    }
  }
  return true;
}

// The farther away, the longer a match has to be to be worth it.
bool Unpack20::DecodeMatch(unsigned symbol) {
  std::uint32_t distance = distances_.Get(0);
  std::uint32_t length = last_length_;
  if (symbol >= kLongMatch) {
    if (symbol == HuffmanCode::kNone) return false;
    length = 3 + TakeValue(kLengthSlots[symbol - kLongMatch], &bits_);
    const unsigned slot = codes_.codes[kDistance].Decode(&bits_);
    if (slot == HuffmanCode::kNone) return false;
    distance = 1 + TakeValue(kDistanceSlots[slot], &bits_);
    length += (distance >= 0x2000) + (distance >= 0x40000);
  } else if (symbol >= kShortMatch) {
    length = 2;
    distance = 1 + TakeValue(kShortDistanceSlots[symbol - kShortMatch], &bits_);
  } else if (symbol >= kRecentDistance) {
    distance = distances_.Get(symbol - kRecentDistance);
    const unsigned slot = codes_.codes[kRepeatedLength].Decode(&bits_);
    if (slot == HuffmanCode::kNone) return false;
    length = 2 + TakeValue(kLengthSlots[slot], &bits_);
    length += (distance >= 0x101) + (distance >= 0x2000) + (distance >= 0x40000);
  }
  last_length_ = length;
  distances_.Push(distance);
  return window_.Copy(distance, length);
}

}  // namespace quendle::modules
