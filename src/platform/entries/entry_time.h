// A moment as file systems and archives tell it.
#pragma once

#include <cstdint>

namespace quendle::platform {

struct EntryTime {
  std::int64_t seconds = 0;  // since 1970, UTC
  std::int32_t nanoseconds = 0;

  bool operator==(const EntryTime&) const = default;
};

}  // namespace quendle::platform
