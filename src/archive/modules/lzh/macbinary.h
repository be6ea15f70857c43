// Files of the classic Mac OS, which packers there wrap into MacBinary.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "archive/modules/lzh/lzh_headers.h"

namespace quendle::modules {

constexpr std::size_t kMacBinaryHeader = 128;  // bytes

// A part of an entry's unpacked bytes.
struct Part {
  std::uint64_t begin = 0;
  std::uint64_t size = 0;
};

// The file in an entry that begins with these bytes: its one fork, when they are a MacBinary header of the
// entry's own name and time and account for its size. Nothing for anything else, and for a file with both forks,
// of which only MacBinary can hold both.
//
// The header: a zero byte, the length of the name and the name in 64 bytes, zero at 74 and 82; from 83 on with
// their highest byte first the sizes of the data and of the resource fork, the times of creation and change in
// seconds since 1904 by the local clock. The forks follow, each filled up to a multiple of 128.
std::optional<Part> FindOnlyFork(std::string_view bytes, const LzhHeader& header);

}  // namespace quendle::modules
