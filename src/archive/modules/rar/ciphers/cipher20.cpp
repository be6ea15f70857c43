#include "archive/modules/rar/ciphers/cipher20.h"

#include <algorithm>
#include <array>
#include <bit>
#include <utility>

#include "archive/modules/common/checksum.h"

namespace quendle::modules {

namespace {

constexpr std::size_t kBlock = 16;
constexpr unsigned kRounds = 32;

constexpr std::array<std::uint8_t, 256> kFirstSubstitutes = {
    0xD7, 0x13, 0x95, 0x23, 0x49, 0xC5, 0xC0, 0xCD, 0xF9, 0x1C, 0x10, 0x77, 0x30, 0xDD, 0x02, 0x2A,
    0xE8, 0x01, 0xB1, 0xE9, 0x0E, 0x58, 0xDB, 0x19, 0xDF, 0xC3, 0xF4, 0x5A, 0x57, 0xEF, 0x99, 0x89,
    0xFF, 0xC7, 0x93, 0x46, 0x5C, 0x42, 0xF6, 0x0D, 0xD8, 0x28, 0x3E, 0x1D, 0xD9, 0xE6, 0x56, 0x06,
    0x47, 0x18, 0xAB, 0xC4, 0x65, 0x71, 0xDA, 0x7B, 0x5D, 0x5B, 0xA3, 0xB2, 0xCA, 0x43, 0x2C, 0xEB,
    0x6B, 0xFA, 0x4B, 0xEA, 0x31, 0xA7, 0x7D, 0xD3, 0x53, 0x72, 0x9D, 0x90, 0x20, 0xC1, 0x8F, 0x24,
    0x9E, 0x7C, 0xF7, 0xBB, 0x59, 0xD6, 0x8D, 0x2F, 0x79, 0xE4, 0x3D, 0x82, 0xD5, 0xC2, 0xAE, 0xFB,
    0x61, 0x6E, 0x36, 0xE5, 0x73, 0x39, 0x98, 0x5E, 0x69, 0xF3, 0xD4, 0x37, 0xD1, 0xF5, 0x3F, 0x0B,
    0xA4, 0xC8, 0x1F, 0x9C, 0x51, 0xB0, 0xE3, 0x15, 0x4C, 0x63, 0x8B, 0xBC, 0x7F, 0x11, 0xF8, 0x33,
    0xCF, 0x78, 0xBD, 0xD2, 0x08, 0xE2, 0x29, 0x48, 0xB7, 0xCB, 0x87, 0xA5, 0xA6, 0x3C, 0x62, 0x07,
    0x7A, 0x26, 0x9B, 0xAA, 0x45, 0xAC, 0xFC, 0xEE, 0x27, 0x86, 0x3B, 0x80, 0xEC, 0x1B, 0xF0, 0x50,
    0x83, 0x03, 0x55, 0xCE, 0x91, 0x4F, 0x9A, 0x8E, 0x9F, 0xDC, 0xC9, 0x85, 0x4A, 0x40, 0x14, 0x81,
    0xE0, 0xB9, 0x8A, 0x67, 0xAD, 0xB6, 0x2B, 0x22, 0xFE, 0x52, 0xC6, 0x97, 0xE7, 0xB4, 0x3A, 0x0A,
    0x76, 0x1A, 0x66, 0x0C, 0x32, 0x84, 0x16, 0xBF, 0x88, 0x6F, 0xA2, 0xB3, 0x2D, 0x04, 0x94, 0x6C,
    0xA1, 0x38, 0x4E, 0x7E, 0xF2, 0xDE, 0x0F, 0xAF, 0x92, 0x17, 0x21, 0xF1, 0xB5, 0xBE, 0x4D, 0xE1,
    0x00, 0x2E, 0xA9, 0xBA, 0x44, 0x5F, 0xED, 0x41, 0x35, 0xD0, 0xFD, 0xA8, 0x09, 0x12, 0x64, 0x34,
    0x74, 0xB8, 0xA0, 0x60, 0x6D, 0x25, 0x1E, 0x6A, 0x8C, 0x68, 0x96, 0x05, 0xCC, 0x75, 0x70, 0x54};

using Words = std::array<std::uint32_t, 4>;

Words WordsOf(const std::uint8_t* block) {
  Words words{};
  for (std::size_t i = 0; i < kBlock; ++i) words[i / 4] |= std::uint32_t{block[i]} << (8 * (i % 4));
  return words;
}

class Cipher20 final : public RarCipher {
 public:
  explicit Cipher20(std::string_view password) {
    // A pair that an odd length leaves, and a block that is not full, go on in zeros.
    std::array<std::uint8_t, kMostPasswordBytes + 1> bytes{};
    std::copy(password.begin(), password.end(), bytes.begin());
    Shuffle(bytes.data(), password.size());
    for (std::size_t start = 0; start < password.size(); start += kBlock) Encrypt(bytes.data() + start);
  }

  void Decrypt(std::uint8_t* bytes, std::size_t size) override {
    for (std::size_t start = 0; start + kBlock <= size; start += kBlock) {
      std::array<std::uint8_t, kBlock> encrypted{};
      std::copy_n(bytes + start, kBlock, encrypted.begin());
      Words words = Masked(encrypted.data());
      for (unsigned round = kRounds; round > 0; --round) Mix(round - 1, &words);
      Put(words, bytes + start);
      ChangeKey(encrypted.data());
    }
  }

  std::size_t BlockSize() const override { return kBlock; }

 private:
  void Shuffle(const std::uint8_t* password, std::size_t size) {
    const auto& table = Crc32Sum::Table();
    for (unsigned turn = 0; turn < 256; ++turn) {
      for (std::size_t i = 0; i < size; i += 2) {
        unsigned from = table[(password[i] - turn) & 0xFF] & 0xFF;
        const unsigned to = table[(password[i + 1] + turn) & 0xFF] & 0xFF;
        for (unsigned step = 1; from != to; ++step, from = (from + 1) & 0xFF) {
          std::swap(substitutes_[from], substitutes_[(from + i + step) & 0xFF]);
        }
      }
    }
  }

  // In place.
  void Encrypt(std::uint8_t* block) {
    Words words = Masked(block);
    for (unsigned round = 0; round < kRounds; ++round) Mix(round, &words);
    Put(words, block);
    ChangeKey(block);
  }

  Words Masked(const std::uint8_t* block) const {
    Words words = WordsOf(block);
    for (std::size_t i = 0; i < 4; ++i) words[i] ^= key_[i];
    return words;
  }

  std::uint32_t Substitute(std::uint32_t word) const {
    return substitutes_[word & 0xFF] | std::uint32_t{substitutes_[word >> 8 & 0xFF]} << 8 |
           std::uint32_t{substitutes_[word >> 16 & 0xFF]} << 16 |
           std::uint32_t{substitutes_[word >> 24]} << 24;
  }

  void Mix(unsigned round, Words* words) const {
    const auto [a, b, c, d] = *words;
    const std::uint32_t key = key_[round % 4];
    *words = {c, d, a ^ Substitute((c + std::rotl(d, 11)) ^ key),
              b ^ Substitute((d ^ std::rotl(c, 17)) + key)};
  }

  void Put(const Words& words, std::uint8_t* block) const {
    for (std::size_t i = 0; i < kBlock; ++i) {
      const std::size_t word = i / 4;
      block[i] = static_cast<std::uint8_t>((words[(word + 2) % 4] ^ key_[word]) >> (8 * (i % 4)));
    }
  }

  void ChangeKey(const std::uint8_t* encrypted) {
    for (std::size_t i = 0; i < kBlock; ++i) key_[i % 4] ^= Crc32Sum::Table()[encrypted[i]];
  }

  Words key_ = {0xD3A3B879, 0x3F6D12F7, 0x7515A235, 0xA4E7F123};
  std::array<std::uint8_t, 256> substitutes_ = kFirstSubstitutes;
};

}  // namespace

std::unique_ptr<RarCipher> MakeCipher20(std::string_view password) {
  if (password.empty()) return nullptr;
  return std::make_unique<Cipher20>(PasswordBytes(password));
}

}  // namespace quendle::modules
