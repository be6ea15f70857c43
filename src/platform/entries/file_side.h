// One side of a collision.
#pragma once

#include <cstdint>
#include <string>

namespace quendle::platform {

// What is known of one side of a collision, for the question whether to overwrite.
struct FileSide {
  std::string path;
  std::uint64_t size = 0;       // bytes; 0 for a folder
  std::int64_t write_time = 0;  // seconds since 1970, UTC
};

}  // namespace quendle::platform
