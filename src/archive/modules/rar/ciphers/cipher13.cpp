#include "archive/modules/rar/ciphers/cipher13.h"

#include <bit>

namespace quendle::modules {

namespace {

class Cipher13 final : public RarCipher {
 public:
  explicit Cipher13(std::string_view password) {
    for (const char c : password) {
      const auto byte = static_cast<std::uint8_t>(c);
      sum_ = static_cast<std::uint8_t>(sum_ + byte);
      step_ ^= byte;
      growth_ = std::rotl(static_cast<std::uint8_t>(growth_ + byte), 1);
    }
  }

  void Decrypt(std::uint8_t* bytes, std::size_t size) override {
    for (std::size_t i = 0; i < size; ++i) {
      step_ = static_cast<std::uint8_t>(step_ + growth_);
      sum_ = static_cast<std::uint8_t>(sum_ + step_);
      bytes[i] = static_cast<std::uint8_t>(bytes[i] - sum_);
    }
  }

  std::size_t BlockSize() const override { return 1; }

 private:
  std::uint8_t sum_ = 0;
  std::uint8_t step_ = 0;    // what the sum grows by
  std::uint8_t growth_ = 0;  // what the step grows by
};

}  // namespace

std::unique_ptr<RarCipher> MakeCipher13(std::string_view password) {
  if (password.empty()) return nullptr;
  return std::make_unique<Cipher13>(PasswordBytes(password));
}

}  // namespace quendle::modules
