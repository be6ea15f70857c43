// Decrypting the packed bytes of an entry, whichever generation of RAR encrypted them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace quendle::modules {

// Made anew for each entry; goes on from one volume to the next.
class RarCipher {
 public:
  virtual ~RarCipher() = default;

  // Decrypts the next `size` bytes in place, a multiple of BlockSize(). What comes of a wrong password, or of
  // damaged bytes, are other bytes.
  virtual void Decrypt(std::uint8_t* bytes, std::size_t size) = 0;

  // 16, or 1 where any number of bytes can be decrypted.
  virtual std::size_t BlockSize() const = 0;
};

// What the ciphers of RAR 1.3 to 2.0 take of a password, which is bytes in a code page to them.
inline constexpr std::size_t kMostPasswordBytes = 127;
inline std::string_view PasswordBytes(std::string_view password) {
  return password.substr(0, kMostPasswordBytes);
}

}  // namespace quendle::modules
