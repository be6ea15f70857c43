// What filters of RAR 2.9 are announced with, for a test.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include "support/rar_encoder.h"

namespace quendle::test {

inline std::string FromHex(std::string_view hex) {
  std::string bytes;
  for (; !hex.empty(); hex.remove_prefix(2))
    bytes.push_back(static_cast<char>(std::stoi(std::string(hex.substr(0, 2)), nullptr, 16)));
  return bytes;
}

// The program for calls (E8) that RAR 3 puts into archives of programs for x86.
inline const std::string kCallsProgram = FromHex(
    "971b012807069808000000d13a101592ec50cb9920b925f0291915530312ae511035592b6004156d4066ab023449043602523e97"
    "00");

inline void PutNumber(std::uint32_t value, PackedBits* bits) {
  const bool is_short = value < 0x10;
  if (value >= 0xFFFFFF00) {
    bits->Put(0x10, 6).Put(value, 8);
  } else if (value < 0x100) {
    bits->Put(is_short ? 0 : 1, 2).Put(value, is_short ? 4 : 8);
  } else {
    bits->Put(value < 0x10000 ? 2 : 3, 2).Put(value, value < 0x10000 ? 16 : 32);
  }
}

inline void PutBytes(std::string_view bytes, PackedBits* bits) {
  for (const char byte : bytes) bits->Put(static_cast<unsigned char>(byte), 8);
}

// Numbers, and bytes right behind them.
inline std::string Record(std::initializer_list<std::uint32_t> numbers, std::string_view bytes = {}) {
  PackedBits bits;
  for (const std::uint32_t number : numbers) PutNumber(number, &bits);
  PutBytes(bytes, &bits);
  return bits.Bytes();
}

}  // namespace quendle::test
