// The cipher of RAR 1.5: a stream of bytes made from four numbers of 16 bits and the table of CRC-32.
#pragma once

#include <memory>
#include <string_view>

#include "archive/modules/rar/ciphers/rar_cipher.h"

namespace quendle::modules {

// `password` is bytes as its writer's code page has them. Null for an empty one, which no entry has.
std::unique_ptr<RarCipher> MakeCipher15(std::string_view password);

}  // namespace quendle::modules
