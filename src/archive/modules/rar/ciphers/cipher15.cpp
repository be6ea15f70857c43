#include "archive/modules/rar/ciphers/cipher15.h"

#include <array>
#include <bit>

#include "archive/modules/common/checksum.h"

namespace quendle::modules {

namespace {

std::uint16_t Low(std::uint32_t value) {
  return static_cast<std::uint16_t>(value & 0xFFFF);
}
std::uint16_t High(std::uint32_t value) {
  return static_cast<std::uint16_t>(value >> 16);
}

class Cipher15 final : public RarCipher {
 public:
  explicit Cipher15(std::string_view password) {
    const std::uint32_t sum = ~Crc32(password);
    key_ = {Low(sum), High(sum), 0, 0};
    for (const char c : password) {
      const auto byte = static_cast<std::uint8_t>(c);
      const std::uint32_t entry = Crc32Sum::Table()[byte];
      key_[2] ^= Low(byte ^ entry);
      key_[3] = Low(std::uint32_t{key_[3]} + byte + High(entry));
    }
  }

  void Decrypt(std::uint8_t* bytes, std::size_t size) override {
    auto [a, b, c, d] = key_;
    for (std::size_t i = 0; i < size; ++i) {
      a = Low(a + 0x1234U);
      const std::uint32_t entry = Crc32Sum::Table()[(a & 0x1FE) >> 1];
      b ^= Low(entry);
      c = Low(std::uint32_t{c} - High(entry));
      a ^= c;
      d = std::rotr(d, 1) ^ b;
      d = std::rotr(d, 1);
      a ^= d;
      bytes[i] ^= static_cast<std::uint8_t>(a >> 8);
    }
    key_ = {a, b, c, d};
  }

  std::size_t BlockSize() const override { return 1; }

 private:
  std::array<std::uint16_t, 4> key_{};
};

}  // namespace

std::unique_ptr<RarCipher> MakeCipher15(std::string_view password) {
  if (password.empty()) return nullptr;
  return std::make_unique<Cipher15>(PasswordBytes(password));
}

}  // namespace quendle::modules
