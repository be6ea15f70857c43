// The keys of RAR 5: PBKDF2 with HMAC-SHA256 over a password and a salt.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

namespace quendle::modules {

using Rar5Digest = std::array<std::uint8_t, 32>;

struct Rar5Keys {
  Rar5Digest key{};                     // of AES-256
  Rar5Digest checksum_key{};            // of checksums that tell nothing about the content
  std::array<std::uint8_t, 8> check{};  // tells whether the password is right
};

// An archive sets the number of rounds: two to the power of `log2_rounds`. More than this (a matter of seconds) are
// refused.
inline constexpr unsigned kMostLog2Rounds = 24;

// `password` is UTF-8, of which the first 127 characters count; `salt` is the 16 bytes that stand in the archive.
// `goes_on` is asked about once in a millisecond. Nothing when it says no, when there are too many rounds, and for
// an empty password, which no entry has.
std::optional<Rar5Keys> DeriveRar5Keys(std::string_view password, std::string_view salt, unsigned log2_rounds,
                                       const std::function<bool()>& goes_on);

enum class PasswordCheck { kRight, kWrong, kUnknown };

// Against the 12 bytes of an archive: the check value and its sum. Where the sum does not hold, they say nothing.
PasswordCheck CheckPassword(const Rar5Keys& keys, std::string_view stored);

// What stands in an archive for these checksums of a content when it says that they are keyed.
std::uint32_t KeyedCrc32(const Rar5Keys& keys, std::uint32_t crc32);
Rar5Digest KeyedBlake2sp(const Rar5Keys& keys, const Rar5Digest& digest);

}  // namespace quendle::modules
