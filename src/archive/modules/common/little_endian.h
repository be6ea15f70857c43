// Numbers in the headers of archives.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace quendle::modules {

// The `width` bytes at `position`, lowest first. Bytes behind the end are zero.
inline std::uint64_t LittleEndian(std::string_view bytes, std::size_t position, std::size_t width) {
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < width && position + i < bytes.size(); ++i) {
    value |= static_cast<std::uint64_t>(static_cast<unsigned char>(bytes[position + i])) << (8 * i);
  }
  return value;
}

inline void AppendLittleEndian(std::uint64_t value, std::size_t width, std::string* bytes) {
  for (std::size_t i = 0; i < width; ++i) bytes->push_back(static_cast<char>(value >> (8 * i) & 0xFF));
}

}  // namespace quendle::modules
