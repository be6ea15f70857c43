// A short name for a long text.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace quendle::platform {

// 16 hexadecimal digits, by FNV-1a: every build has to come to the same ones.
inline std::string HashText(std::string_view text) {
  std::uint64_t hash = 0xcbf29ce484222325U;
  for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3U;
  char digits[17];
  std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(hash));
  return digits;
}

}  // namespace quendle::platform
