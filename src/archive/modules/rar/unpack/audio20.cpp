#include "archive/modules/rar/unpack/audio20.h"

#include <cstdlib>

#include "archive/modules/rar/unpack/filter_bytes.h"

namespace quendle::modules {

std::uint8_t AudioChannel::Next(unsigned error, int* step) {
  inputs_[3] = inputs_[2];
  inputs_[2] = inputs_[1];
  inputs_[1] = last_step_ - inputs_[0];
  inputs_[0] = last_step_;
  inputs_[4] = *step;
  int sum = 8 * last_byte_;
  for (std::size_t i = 0; i < kInputs; ++i) sum += weights_[i] * inputs_[i];
  const auto byte = static_cast<std::uint8_t>(static_cast<unsigned>(sum >> 3) - error);

  const int off = 8 * SignedByte(static_cast<std::uint8_t>(error));
  as_it_is_ += std::abs(off);
  for (std::size_t i = 0; i < kInputs; ++i) {
    with_less_[i] += std::abs(off - inputs_[i]);
    with_more_[i] += std::abs(off + inputs_[i]);
  }
  last_step_ = *step = SignedByte(static_cast<std::uint8_t>(byte - last_byte_));
  last_byte_ = byte;
  if (++count_ % 32 == 0) Adapt();
  return byte;
}

// The weight whose change would have helped most is changed.
void AudioChannel::Adapt() {
  int least = as_it_is_;
  int* weight = nullptr;
  int change = 0;
  for (std::size_t i = 0; i < kInputs; ++i) {
    if (with_less_[i] < least) {
      least = with_less_[i];
      weight = &weights_[i];
      change = -1;
    }
    if (with_more_[i] < least) {
      least = with_more_[i];
      weight = &weights_[i];
      change = 1;
    }
  }
  if (weight != nullptr && (change < 0 ? *weight >= -16 : *weight < 16)) *weight += change;
  as_it_is_ = 0;
  with_less_.fill(0);
  with_more_.fill(0);
}

}  // namespace quendle::modules
