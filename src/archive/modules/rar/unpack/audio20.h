// Sounds in RAR 2.0 to 2.6: a byte is predicted from those before it in its channel, and only how far off that was is packed.
#pragma once

#include <array>
#include <cstdint>

namespace quendle::modules {

// One of the channels, whose bytes take turns.
class AudioChannel {
 public:
  // The next byte, by how much less it is than was predicted, modulo 256. `step`: how far the last byte of any channel
  // lay from the one before it in that channel, 0 at first.
  std::uint8_t Next(unsigned error, int* step);

 private:
  void Adapt();

  static constexpr std::size_t kInputs = 5;

  // What a byte is predicted from beside the last one, and by which weights: the last step, three differences between
  // steps, and the last step of any channel.
  std::array<int, kInputs> inputs_{};
  std::array<int, kInputs> weights_{};
  // How far off predictions would have been with each input more or less by one, and as they were.
  std::array<int, kInputs> with_more_{};
  std::array<int, kInputs> with_less_{};
  int as_it_is_ = 0;
  int last_step_ = 0;
  std::uint8_t last_byte_ = 0;
  unsigned count_ = 0;
};

}  // namespace quendle::modules
