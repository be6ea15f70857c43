// The cipher of RAR 1.3 and 1.4: a running sum, byte by byte.
#pragma once

#include <memory>
#include <string_view>

#include "archive/modules/rar/ciphers/rar_cipher.h"

namespace quendle::modules {

// `password` is bytes as its writer's code page has them. Null for an empty one, which no entry has.
std::unique_ptr<RarCipher> MakeCipher13(std::string_view password);

}  // namespace quendle::modules
