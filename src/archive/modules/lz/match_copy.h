// Copying a match within a window.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace quendle::modules {

// CopyMatch may write so many bytes behind the match, and read so many behind what it repeats.
inline constexpr std::size_t kMatchSlack = 16;

// Writes `length` bytes to `to`, which repeat those from `from` on, `back` (not 0) bytes before `to` or anywhere else.
inline void CopyMatch(std::uint8_t* to, const std::uint8_t* from, std::size_t back, std::size_t length) {
  std::uint8_t* const end = to + length;
  if (back >= kMatchSlack) {
    do {
      std::memcpy(to, from, kMatchSlack);
      to += kMatchSlack;
      from += kMatchSlack;
    } while (to < end);
    return;
  }
  if (back == 1) {
    std::memset(to, *from, length);
    return;
  }
  std::uint64_t step = 0;
  const auto copy_step = [&] {
    std::memcpy(&step, from, sizeof(step));
    std::memcpy(to, &step, sizeof(step));
  };
  // Each round doubles what repeats, until it is as long as a step.
  for (; back < sizeof(step) && to < end; to += back, back *= 2) copy_step();
  for (; to < end; to += sizeof(step), from += sizeof(step)) copy_step();
}

}  // namespace quendle::modules
