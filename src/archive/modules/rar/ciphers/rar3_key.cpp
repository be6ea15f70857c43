#include "archive/modules/rar/ciphers/rar3_key.h"

#include <nettle/sha1.h>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <string>
#include <vector>

#include "platform/text/unicode.h"

namespace quendle::modules {

namespace {

constexpr std::uint32_t kRounds = 1 << 18;
constexpr std::uint32_t kRoundsPerIvByte = kRounds / 16;
constexpr std::uint32_t kRoundsAtOnce = 512;
constexpr std::size_t kCounter = 3;  // bytes
constexpr std::size_t kMostUnits = 127;

using Bytes = std::vector<std::uint8_t>;

Bytes SeedOf(std::string_view password, std::string_view salt) {
  std::string seed = platform::ToUtf16Le(password);
  seed.resize(std::min(seed.size(), 2 * kMostUnits));
  seed.append(salt);
  return {seed.begin(), seed.end()};
}

// The 64 bytes become the last 16 words of what SHA-1 makes of them when it begins with such a block.
void Overwrite(std::uint8_t* block) {
  std::array<std::uint32_t, 80> words{};
  for (std::size_t i = 0; i < SHA1_BLOCK_SIZE; ++i) words[i / 4] = words[i / 4] << 8 | block[i];
  for (std::size_t i = 16; i < words.size(); ++i) {
    words[i] = std::rotl(words[i - 3] ^ words[i - 8] ^ words[i - 14] ^ words[i - 16], 1);
  }
  for (std::size_t i = 0; i < SHA1_BLOCK_SIZE; ++i) {
    block[i] = static_cast<std::uint8_t>(words[64 + i / 4] >> (8 * (i % 4)));
  }
}

// What is hashed of a number of rounds.
class Rounds {
 public:
  Rounds(Bytes seed, bool changes) : seed_(std::move(seed)), changes_(changes) {}

  // One after the other, from round 0 on.
  const Bytes& Next(std::uint32_t count) {
    bytes_.clear();
    for (const std::uint32_t end = round_ + count; round_ < end; ++round_) {
      bytes_.insert(bytes_.end(), seed_.begin(), seed_.end());
      if (changes_) Change();
      for (unsigned shift = 0; shift < 8 * kCounter; shift += 8) {
        bytes_.push_back(static_cast<std::uint8_t>(round_ >> shift));
      }
    }
    return bytes_;
  }

 private:
  // The bytes that fill up the block at hand are copied to it and stay; whole blocks behind them do not.
  void Change() {
    const std::size_t hashed = round_ * (seed_.size() + kCounter);
    for (std::size_t at = SHA1_BLOCK_SIZE - hashed % SHA1_BLOCK_SIZE; at + SHA1_BLOCK_SIZE <= seed_.size();
         at += SHA1_BLOCK_SIZE) {
      Overwrite(seed_.data() + at);
    }
  }

  Bytes seed_;
  bool changes_;
  std::uint32_t round_ = 0;
  Bytes bytes_;
};

void Add(const Bytes& bytes, sha1_ctx* sum) {
  sha1_update(sum, bytes.size(), bytes.data());
}

std::array<std::uint8_t, SHA1_DIGEST_SIZE> ValueOf(sha1_ctx sum) {
  std::array<std::uint8_t, SHA1_DIGEST_SIZE> digest{};
  sha1_digest(&sum, digest.size(), digest.data());
  return digest;
}

}  // namespace

bool IsLongRar3Password(std::string_view password, std::string_view salt) {
  return SeedOf(password, salt).size() > SHA1_BLOCK_SIZE;
}

std::optional<Rar3Key> DeriveRar3Key(std::string_view password, std::string_view salt, LongPasswords way,
                                     const std::function<bool()>& goes_on) {
  if (password.empty()) return std::nullopt;
  Rar3Key result;
  Rounds rounds(SeedOf(password, salt), way == LongPasswords::kChanging);
  sha1_ctx sum;
  sha1_init(&sum);
  for (std::uint32_t round = 0; round < kRounds; round += kRoundsAtOnce) {
    if (!goes_on()) return std::nullopt;
    std::uint32_t count = kRoundsAtOnce;
    if (round % kRoundsPerIvByte == 0) {
      Add(rounds.Next(1), &sum);
      --count;
      result.iv[round / kRoundsPerIvByte] = ValueOf(sum).back();
    }
    Add(rounds.Next(count), &sum);
  }
  const auto digest = ValueOf(sum);
  for (std::size_t i = 0; i < result.key.size(); ++i) result.key[i] = digest[i ^ 3];
  return result;
}

}  // namespace quendle::modules
