// The checksum of ZIP and 7Z headers.
#pragma once

#include <cstdint>
#include <string_view>

namespace quendle::modules {

// For headers and names; libraries check contents.
inline std::uint32_t Crc32(std::string_view bytes) {
  std::uint32_t crc = ~0U;
  for (const char byte : bytes) {
    crc ^= static_cast<unsigned char>(byte);
    for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ ((crc & 1U) != 0 ? 0xEDB88320U : 0U);
  }
  return ~crc;
}

}  // namespace quendle::modules
