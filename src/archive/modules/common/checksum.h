// The checksums of the formats, fast enough for contents that come off the disk as they are.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace quendle::modules {

// A cyclic redundancy check of up to 32 bits that takes the lowest bit first. Eight bytes are looked up at a time.
template <std::uint32_t polynomial, std::uint32_t start>
class Checksum {
 public:
  void Add(std::string_view bytes) {
    const auto byte = [&bytes](std::size_t i) {
      return static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[i]));
    };
    while (bytes.size() >= 8) {
      const std::uint32_t low = state_ ^ (byte(0) | byte(1) << 8 | byte(2) << 16 | byte(3) << 24);
      state_ = kTables[7][low & 0xFF] ^ kTables[6][low >> 8 & 0xFF] ^ kTables[5][low >> 16 & 0xFF] ^
               kTables[4][low >> 24] ^ kTables[3][byte(4)] ^ kTables[2][byte(5)] ^ kTables[1][byte(6)] ^
               kTables[0][byte(7)];
      bytes.remove_prefix(8);
    }
    for (const char c : bytes)
      state_ = kTables[0][(state_ ^ static_cast<unsigned char>(c)) & 0xFF] ^ state_ >> 8;
  }

  // Of all that was added.
  std::uint32_t Value() const { return state_ ^ start; }

  // What becomes of each byte: the table that descriptions of a checksum have.
  static constexpr const std::array<std::uint32_t, 256>& Table() { return kTables[0]; }

 private:
  // Table n: what a byte becomes when n zero bytes follow it.
  using Tables = std::array<std::array<std::uint32_t, 256>, 8>;
  static constexpr Tables MakeTables() {
    Tables tables{};
    for (std::uint32_t i = 0; i < 256; ++i) {
      std::uint32_t value = i;
      for (int bit = 0; bit < 8; ++bit) value = value >> 1 ^ ((value & 1U) != 0 ? polynomial : 0U);
      tables[0][i] = value;
    }
    for (std::size_t n = 1; n < 8; ++n) {
      for (std::size_t i = 0; i < 256; ++i) {
        tables[n][i] = tables[0][tables[n - 1][i] & 0xFF] ^ tables[n - 1][i] >> 8;
      }
    }
    return tables;
  }
  static constexpr Tables kTables = MakeTables();

  std::uint32_t state_ = start;
};

using Crc32Sum = Checksum<0xEDB88320, 0xFFFFFFFF>;
using Crc16Sum = Checksum<0xA001, 0>;

inline std::uint32_t Crc32(std::string_view bytes) {
  Crc32Sum sum;
  sum.Add(bytes);
  return sum.Value();
}

}  // namespace quendle::modules
