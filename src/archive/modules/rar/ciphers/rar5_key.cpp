#include "archive/modules/rar/ciphers/rar5_key.h"

#include <nettle/hmac.h>

#include <algorithm>

#include "platform/text/unicode.h"

namespace quendle::modules {

namespace {

constexpr std::uint32_t kRoundsAtOnce = 4096;
constexpr std::uint32_t kRoundsBetweenKeys = 16;
constexpr std::size_t kMostCharacters = 127;
constexpr std::size_t kCheckSum = 4;

const std::uint8_t* BytesOf(std::string_view text) {
  return reinterpret_cast<const std::uint8_t*>(text.data());
}

class Hmac {
 public:
  Hmac(const std::uint8_t* key, std::size_t size) { hmac_sha256_set_key(&context_, size, key); }

  void Add(const std::uint8_t* bytes, std::size_t size) { hmac_sha256_update(&context_, size, bytes); }

  // Of all that was added since the last value.
  Rar5Digest Value() {
    Rar5Digest digest{};
    hmac_sha256_digest(&context_, digest.size(), digest.data());
    return digest;
  }

 private:
  hmac_sha256_ctx context_{};
};

// Its only block: one of 32 bytes is all that is wanted.
class Pbkdf2 {
 public:
  Pbkdf2(std::string_view password, std::string_view salt) : hmac_(BytesOf(password), password.size()) {
    constexpr std::array<std::uint8_t, 4> kBlockNumber = {0, 0, 0, 1};
    hmac_.Add(BytesOf(salt), salt.size());
    hmac_.Add(kBlockNumber.data(), kBlockNumber.size());
    last_ = sum_ = hmac_.Value();
  }

  // Beside the first one, which is done. False when it was ended.
  bool Run(std::uint32_t rounds, const std::function<bool()>& goes_on) {
    for (std::uint32_t round = 0; round < rounds; ++round) {
      if (round % kRoundsAtOnce == 0 && !goes_on()) return false;
      hmac_.Add(last_.data(), last_.size());
      last_ = hmac_.Value();
      for (std::size_t i = 0; i < sum_.size(); ++i) sum_[i] ^= last_[i];
    }
    return true;
  }

  const Rar5Digest& Value() const { return sum_; }

 private:
  Hmac hmac_;
  Rar5Digest last_{};
  Rar5Digest sum_{};
};

std::string_view FirstCharacters(std::string_view text) {
  std::string_view rest = text;
  char32_t character = 0;
  for (std::size_t i = 0; i < kMostCharacters && !rest.empty(); ++i)
    platform::TakeCodePoint(&rest, &character);
  return text.substr(0, text.size() - rest.size());
}

Rar5Digest Keyed(const Rar5Keys& keys, const std::uint8_t* bytes, std::size_t size) {
  Hmac hmac(keys.checksum_key.data(), keys.checksum_key.size());
  hmac.Add(bytes, size);
  return hmac.Value();
}

}  // namespace

std::optional<Rar5Keys> DeriveRar5Keys(std::string_view password, std::string_view salt, unsigned log2_rounds,
                                       const std::function<bool()>& goes_on) {
  if (password.empty() || log2_rounds > kMostLog2Rounds) return std::nullopt;
  Pbkdf2 run(FirstCharacters(password), salt);
  Rar5Keys keys;
  if (!run.Run((std::uint32_t{1} << log2_rounds) - 1, goes_on)) return std::nullopt;
  keys.key = run.Value();
  if (!run.Run(kRoundsBetweenKeys, goes_on)) return std::nullopt;
  keys.checksum_key = run.Value();
  if (!run.Run(kRoundsBetweenKeys, goes_on)) return std::nullopt;
  for (std::size_t i = 0; i < run.Value().size(); ++i) keys.check[i % keys.check.size()] ^= run.Value()[i];
  return keys;
}

PasswordCheck CheckPassword(const Rar5Keys& keys, std::string_view stored) {
  const std::size_t size = keys.check.size();
  if (stored.size() != size + kCheckSum) return PasswordCheck::kUnknown;
  const std::uint8_t* bytes = BytesOf(stored);
  sha256_ctx sum;
  sha256_init(&sum);
  sha256_update(&sum, size, bytes);
  Rar5Digest digest{};
  sha256_digest(&sum, digest.size(), digest.data());
  if (!std::equal(bytes + size, bytes + size + kCheckSum, digest.begin())) return PasswordCheck::kUnknown;
  return std::equal(bytes, bytes + size, keys.check.begin()) ? PasswordCheck::kRight : PasswordCheck::kWrong;
}

std::uint32_t KeyedCrc32(const Rar5Keys& keys, std::uint32_t crc32) {
  std::array<std::uint8_t, 4> bytes{};
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(crc32 >> (8 * i));
  const Rar5Digest digest = Keyed(keys, bytes.data(), bytes.size());
  std::uint32_t folded = 0;
  for (std::size_t i = 0; i < digest.size(); ++i) folded ^= std::uint32_t{digest[i]} << (8 * (i % 4));
  return folded;
}

Rar5Digest KeyedBlake2sp(const Rar5Keys& keys, const Rar5Digest& digest) {
  return Keyed(keys, digest.data(), digest.size());
}

}  // namespace quendle::modules
