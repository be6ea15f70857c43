// The ciphers of RAR 2.9 to 4 (AES-128) and RAR 5 (AES-256), in CBC mode, with the keys of rar3_key.h and rar5_key.h.
#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "archive/modules/rar/ciphers/rar_cipher.h"

namespace quendle::modules {

using AesBlock = std::array<std::uint8_t, 16>;

// `iv` is what the first block is chained to.
std::unique_ptr<RarCipher> MakeAes128Cipher(const std::array<std::uint8_t, 16>& key, const AesBlock& iv);
std::unique_ptr<RarCipher> MakeAes256Cipher(const std::array<std::uint8_t, 32>& key, const AesBlock& iv);

}  // namespace quendle::modules
