// The cipher of RAR 2.0 and 2.6: blocks of 16 bytes, and a key that changes with each encrypted block.
#pragma once

#include <memory>
#include <string_view>

#include "archive/modules/rar/ciphers/rar_cipher.h"

namespace quendle::modules {

// `password` is bytes as its writer's code page has them. Null for an empty one, which no entry has.
std::unique_ptr<RarCipher> MakeCipher20(std::string_view password);

}  // namespace quendle::modules
