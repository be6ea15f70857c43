// The distances of the last four matches, which later ones may repeat.
#pragma once

#include <array>
#include <cstdint>

namespace quendle::modules {

class RecentDistances {
 public:
  void Push(std::uint32_t distance) { distances_[next_++ % distances_.size()] = distance; }

  // Age 0 is the newest, 3 the oldest. 0: there were not so many.
  std::uint32_t Get(unsigned age) const { return distances_[(next_ - 1 - age) % distances_.size()]; }

 private:
  std::array<std::uint32_t, 4> distances_{};
  std::uint32_t next_ = 0;
};

}  // namespace quendle::modules
