#include "archive/modules/rar/unpack/filters29.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>

#include "archive/modules/rar/unpack/filter_bytes.h"

namespace quendle::modules {
namespace {

constexpr std::size_t kColours = 3;

// Of the bytes before it in its row, above it, and above that one: the nearest to where these three lead.
unsigned GuessColour(unsigned before, unsigned above, unsigned above_before) {
  const int guess = static_cast<int>(before + above) - static_cast<int>(above_before);
  const auto distance = [guess](unsigned byte) { return std::abs(guess - static_cast<int>(byte)); };
  if (distance(before) <= distance(above) && distance(before) <= distance(above_before)) return before;
  return distance(above) <= distance(above_before) ? above : above_before;
}

// One channel of sound.
class Channel {
 public:
  // The next byte, from how much less it is than the guess.
  std::uint8_t Next(std::uint8_t less) {
    changes_ = {last_change_, last_change_ - changes_[0], changes_[1]};
    int guess = 8 * last_;
    for (std::size_t i = 0; i < changes_.size(); ++i) guess += weights_[i] * changes_[i];
    const auto byte = static_cast<std::uint8_t>((guess >> 3) - less);
    last_change_ = SignedByte(static_cast<std::uint8_t>(byte - last_));
    last_ = byte;
    Weigh(8 * SignedByte(less));
    return byte;
  }

 private:
  // Sums up how far the guesses were off, and would have been with other weights, and now and then moves to the best.
  void Weigh(int off) {
    sums_[0] += std::abs(off);
    for (std::size_t i = 0; i < changes_.size(); ++i) {
      sums_[2 * i + 1] += std::abs(off - changes_[i]);
      sums_[2 * i + 2] += std::abs(off + changes_[i]);
    }
    if (count_++ % 32 != 0) return;
    const auto best = static_cast<std::size_t>(std::min_element(sums_.begin(), sums_.end()) - sums_.begin());
    sums_.fill(0);
    if (best == 0) return;
    int& weight = weights_[(best - 1) / 2];
    if (best % 2 == 1) {
      if (weight >= -16) --weight;
    } else if (weight < 16) {
      ++weight;
    }
  }

  int last_ = 0;
  int last_change_ = 0;
  std::array<int, 3>
      changes_{};  // the last, how it differed from the one before it, and that of the last byte
  std::array<int, 3> weights_{};
  std::array<int, 7> sums_{};
  unsigned count_ = 0;
};

// Which of the three slots of a bundle may have a call, as bits, by the template in its lowest five bits. None has one
// below 10h.
constexpr unsigned kFirstTemplate = 0x10;
constexpr std::array<std::uint8_t, 16> kCallSlots = {4, 4, 6, 6, 0, 0, 7, 7, 4, 4, 0, 0, 4, 4, 0, 0};

// In the slot of a bundle that begins at its bit `first`.
void TurnCall(std::uint32_t bundle_number, std::size_t first, std::uint8_t* bundle) {
  constexpr unsigned kCall = 5;
  const std::size_t opcode = first + 37;  // it lies in one byte
  if ((bundle[opcode / 8] >> (opcode % 8) & 0xF) != kCall) return;
  constexpr std::uint32_t kMask = 0xFFFFF;
  const std::size_t target = first + 13;
  const std::size_t shift = target % 8;
  const std::uint32_t word = LoadNumber(bundle + target / 8, 4);
  const std::uint32_t turned = ((word >> shift) - bundle_number) & kMask;
  StoreNumber((word & ~(kMask << shift)) | turned << shift, 4, bundle + target / 8);
}

}  // namespace

bool ItaniumFilter::Run(std::uint64_t position, std::vector<std::uint8_t>* bytes) {
  constexpr std::uint32_t kBundle = 16;
  constexpr std::size_t kLeftBehind = 21;  // the program stops early
  auto number = static_cast<std::uint32_t>(position) / kBundle;
  for (std::size_t i = 0; i + kLeftBehind < bytes->size(); i += kBundle, ++number) {
    std::uint8_t* const bundle = bytes->data() + i;
    const unsigned kind = *bundle & 0x1FU;
    if (kind < kFirstTemplate) continue;
    for (std::size_t slot = 0; slot < 3; ++slot)
      if ((kCallSlots[kind - kFirstTemplate] >> slot & 1U) != 0) TurnCall(number, 5 + 41 * slot, bundle);
  }
  return true;
}

bool RgbFilter::Run(std::uint64_t /*position*/, std::vector<std::uint8_t>* bytes) {
  if (width_ < kColours) return false;
  const std::size_t row = width_ - kColours;
  const std::size_t size = bytes->size();
  std::vector<std::uint8_t> points(size);
  const std::uint8_t* from = bytes->data();
  for (std::size_t colour = 0; colour < kColours; ++colour) {
    unsigned before = 0;
    for (std::size_t i = colour; i < size; i += kColours) {
      const bool has_above = i >= row + kColours;
      const unsigned guess =
          has_above ? GuessColour(before, points[i - row], points[i - row - kColours]) : before;
      before = points[i] = static_cast<std::uint8_t>(guess - *from++);
    }
  }
  for (std::size_t i = first_; i + 2 < size; i += kColours) {
    const unsigned green = points[i + 1];
    points[i] = static_cast<std::uint8_t>(points[i] + green);
    points[i + 2] = static_cast<std::uint8_t>(points[i + 2] + green);
  }
  bytes->swap(points);
  return true;
}

bool AudioFilter::Run(std::uint64_t /*position*/, std::vector<std::uint8_t>* bytes) {
  if (channels_ == 0) return false;
  const std::size_t size = bytes->size();
  std::vector<std::uint8_t> sound(size);
  const std::uint8_t* from = bytes->data();
  for (std::size_t first = 0; first < std::min<std::size_t>(channels_, size); ++first) {
    Channel channel;
    for (std::size_t i = first; i < size; i += channels_) sound[i] = channel.Next(*from++);
  }
  bytes->swap(sound);
  return true;
}

}  // namespace quendle::modules
