// The checksum of RAR 1.3 and 1.4.
#pragma once

#include <bit>
#include <cstdint>
#include <string_view>

namespace quendle::modules {

// Adds each byte and rotates the sum by a bit.
class RotatingSum {
 public:
  void Add(std::string_view bytes) {
    for (const char c : bytes) {
      state_ = std::rotl(static_cast<std::uint16_t>(state_ + static_cast<unsigned char>(c)), 1);
    }
  }

  // Of all that was added.
  std::uint16_t Value() const { return state_; }

 private:
  std::uint16_t state_ = 0;
};

}  // namespace quendle::modules
