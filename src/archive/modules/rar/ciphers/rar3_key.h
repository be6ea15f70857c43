// The key of RAR 2.9 to 4: 262,144 rounds of SHA-1 over a password and a salt.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

namespace quendle::modules {

struct Rar3Key {
  std::array<std::uint8_t, 16> key{};
  std::array<std::uint8_t, 16> iv{};
};

// How rounds treat a password that is longer than the blocks of SHA-1. In the archives' own way its bytes change
// from round to round, since they are where SHA-1 works; some programs do without that, and nothing in an archive
// tells. Whoever finds that one way does not open an entry tries the other.
enum class LongPasswords { kChanging, kPlain };

// Does it matter? It takes 29 characters with a salt.
bool IsLongRar3Password(std::string_view password, std::string_view salt);

// `password` is UTF-8, of which the first 127 units of UTF-16 count; `salt` is the 8 bytes that stand in the archive,
// or nothing. `goes_on` is asked about once in a millisecond. Nothing when it says no, and for an empty
// password, which no entry has.
std::optional<Rar3Key> DeriveRar3Key(std::string_view password, std::string_view salt, LongPasswords way,
                                     const std::function<bool()>& goes_on);

}  // namespace quendle::modules
