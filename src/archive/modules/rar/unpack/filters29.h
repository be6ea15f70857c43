// The filters that RAR 2.9 has and later ones do not. In the archive each is a program, here they are what those do.
#pragma once

#include <cstdint>
#include <vector>

#include "archive/modules/rar/unpack/filter_queue.h"

namespace quendle::modules {

// Of programs for Itanium: a call has the bundle in its entry that it leads to, instead of how far that is.
class ItaniumFilter final : public Filter {
 public:
  bool Run(std::uint64_t position, std::vector<std::uint8_t>* bytes) override;
};

// Of pictures with three bytes for each point: the colours lie one behind the other. Each byte says how much less it is
// than the nearest of three that a guess is made from: of the point before it, above it, and above that one; red and
// blue are less their green, too.
class RgbFilter final : public Filter {
 public:
  // `width`: of the rows, in bytes and 3 more; `first`: where the first red byte is. Fails when the width is below 3.
  RgbFilter(std::uint32_t width, std::uint32_t first) : width_(width), first_(first) {}
  bool Run(std::uint64_t position, std::vector<std::uint8_t>* bytes) override;

 private:
  std::uint32_t width_;
  std::uint32_t first_;
};

// Of sound: the channels lie one behind the other, and each byte says how much less it is than one guessed from those
// before it in its channel, by weights that change with how the guesses fit.
class AudioFilter final : public Filter {
 public:
  // Fails when there are no channels. More than there are bytes are as good as that many.
  explicit AudioFilter(std::uint32_t channels) : channels_(channels) {}
  bool Run(std::uint64_t position, std::vector<std::uint8_t>* bytes) override;

 private:
  std::uint32_t channels_;
};

}  // namespace quendle::modules
