#include "archive/modules/rar/ciphers/aes_cipher.h"

#include <nettle/aes.h>
#include <nettle/cbc.h>
#include <nettle/nettle-meta.h>

namespace quendle::modules {

namespace {

class AesCipher final : public RarCipher {
 public:
  // `key` has as many bytes as `cipher` takes.
  AesCipher(const nettle_cipher& cipher, const std::uint8_t* key, const AesBlock& iv)
      : cipher_(cipher), iv_(iv) {
    cipher_.set_decrypt_key(&context_, key);
  }

  void Decrypt(std::uint8_t* bytes, std::size_t size) override {
    cbc_decrypt(&context_, cipher_.decrypt, iv_.size(), iv_.data(), size, bytes, bytes);
  }

  std::size_t BlockSize() const override { return iv_.size(); }

 private:
  const nettle_cipher& cipher_;
  union {
    aes128_ctx of_128_bits;
    aes256_ctx of_256_bits;
  } context_{};
  AesBlock iv_;  // the last encrypted block
};

}  // namespace

std::unique_ptr<RarCipher> MakeAes128Cipher(const std::array<std::uint8_t, 16>& key, const AesBlock& iv) {
  return std::make_unique<AesCipher>(nettle_aes128, key.data(), iv);
}

std::unique_ptr<RarCipher> MakeAes256Cipher(const std::array<std::uint8_t, 32>& key, const AesBlock& iv) {
  return std::make_unique<AesCipher>(nettle_aes256, key.data(), iv);
}

}  // namespace quendle::modules
