#include <algorithm>
#include <memory>
#include <optional>

#include "archive/modules/rar/ciphers/aes_cipher.h"
#include "archive/modules/rar/ciphers/blake2sp.h"
#include "archive/modules/rar/ciphers/cipher13.h"
#include "archive/modules/rar/ciphers/cipher15.h"
#include "archive/modules/rar/ciphers/cipher20.h"
#include "archive/modules/rar/ciphers/key_cache.h"
#include "archive/modules/rar/ciphers/rar3_key.h"
#include "archive/modules/rar/ciphers/rar5_key.h"
#include "archive/modules/rar/ciphers/rotating_sum.h"
#include "support/archives.h"

namespace quendle::modules {
namespace {

using test::FromHex;

bool Always() {
  return true;
}

template <typename Bytes>
std::string Hex(const Bytes& bytes) {
  std::string hex;
  for (const auto byte : bytes) {
    for (const int shift : {4, 0}) hex += "0123456789abcdef"[static_cast<unsigned char>(byte) >> shift & 15];
  }
  return hex;
}

template <std::size_t size>
std::array<std::uint8_t, size> ArrayOf(std::string_view bytes) {
  std::array<std::uint8_t, size> array{};
  std::copy_n(bytes.begin(), size, array.begin());
  return array;
}

// In pieces of `blocks` blocks, the last one being what is left.
std::string Decrypted(RarCipher* cipher, std::string bytes, std::size_t blocks) {
  for (std::size_t at = 0; at < bytes.size();) {
    const std::size_t size = std::min(bytes.size() - at, blocks * cipher->BlockSize());
    cipher->Decrypt(reinterpret_cast<std::uint8_t*>(&bytes[at]), size);
    at += size;
  }
  return bytes;
}

// All rows decrypt to this.
constexpr std::string_view kPlain = "0123456789abcdef0123456789abcdef";

GTEST_TEST(RarCiphers, DecryptBytesOfOldArchives) {
  const struct {
    std::unique_ptr<RarCipher> (*make)(std::string_view);
    std::string password;
    const char* encrypted;
  } rows[] = {
      {MakeCipher13, "a", "b49a42acd8c676e81c12f16ba7a565e7f4fac24c98a676085c72710b67856507"},
      {MakeCipher13, "password", "ff997084d5632e367bfde3df188e41312791381c3d9b360e23752bf70046c989"},
      {MakeCipher15, "a", "451e97777d682aa56f845c2f10c0902dbbdebd821dc6f0ed1f1fef0d81fb84a4"},
      {MakeCipher15, "password", "73edadc31ab3ebbf502f7ec28ec436789918a5699700008fb104fe4730280e7e"},
      {MakeCipher15, FromHex("8ea782936b6579"),
       "e7665d74b61926ee856e8a6ccf29d0acdbfa34e3a765f93793362c79b6f966d4"},
      {MakeCipher20, "a", "8a2ee20cedc7c95a2d15a2285e934f770b9707c02517241558005918584ffe5b"},
      {MakeCipher20, "password", "b714545a558bcaf7bc1838171d9e31abc7665d05b04cdf9e1c77b8489da23918"},
      {MakeCipher20, "0123456789abcdefXYZ",
       "59e39b3363de6a5366dc072d7d019d2d80424c22817cd60069502abd7bb691fc"},
  };
  for (const auto& row : rows) {
    for (const std::size_t blocks : {32U, 1U, 5U}) {
      EXPECT_EQ(Decrypted(row.make(row.password).get(), FromHex(row.encrypted), blocks), kPlain)
          << row.password << ' ' << row.encrypted << " by " << blocks;
    }
    EXPECT_EQ(row.make(""), nullptr);
    // What the longest password has behind its end does not count, its last byte does.
    const auto with = [&](const std::string& password) {
      return Decrypted(row.make(password).get(), std::string(kPlain), 2);
    };
    EXPECT_EQ(with(std::string(127, 'x') + "y"), with(std::string(127, 'x')));
    EXPECT_NE(with(std::string(127, 'x')), with(std::string(126, 'x')));
  }
}

GTEST_TEST(RarCiphers, DeriveTheKeysOfRar3) {
  constexpr auto kChanging = LongPasswords::kChanging;
  std::string long_password;
  for (int i = 0; i < 4; ++i) long_password += "abcdefghij";
  const struct {
    std::string password;
    const char* salt;
    LongPasswords way;
    const char *key, *iv;
    const char* encrypted;
  } rows[] = {
      {"password", "0001020304050607", kChanging, "20f3fb49c2976b56cf873c55fbf242ed",
       "04c8774671e283d90519dca70a85fb65",
       "1d48b69195342bd9e4a10eab3edc90ddec879ef1861f45b82e61d580341d8ebd"},
      {"пароль", "9d5910240b559db1", kChanging, "ff632d3868590f220213b4c86c483dcb",
       "0c2899c9c7cd44c274de1bf11b069d57",
       "d35cc3e9a487427fe82910ced8944ebc1f526099f1ff9adbd18d86b1f323e7c4"},
      {"password", "", kChanging, "9bde0a0b8000e732fe25f1ba7e77012c", "353b447f82c586792fc594e64c4e67f9",
       "918f77f19f63cec84d1c0a54f3c6c1c9e3bb03ca911c4f78f870c25f1cf7846c"},
      {long_password, "0011223344556677", kChanging, "284076b4418b15a308818ffe3befc348",
       "10f623d237851354fed2ca0fb3e1ffd0",
       "16bb3a7d1b2e8f74dccc9bf783e137b7ebbd4023d0039349f1cb7e4841de797a"},
      {long_password, "0011223344556677", LongPasswords::kPlain, "50c421660cd70c5d019e22468c1d8203",
       "10cb35d3877ec4bcee222f9181611232", ""},
  };
  for (const auto& row : rows) {
    const auto key = DeriveRar3Key(row.password, FromHex(row.salt), row.way, Always);
    ASSERT_TRUE(key);
    EXPECT_EQ(Hex(key->key), row.key) << row.password;
    EXPECT_EQ(Hex(key->iv), row.iv) << row.password;
    const auto encrypted = FromHex(row.encrypted);
    for (const std::size_t blocks : {2U, 1U}) {
      EXPECT_EQ(Decrypted(MakeAes128Cipher(key->key, key->iv).get(), encrypted, blocks),
                kPlain.substr(0, encrypted.size()));
    }
  }
  const std::string longest(127, 'x');
  const auto key_of = [&](const std::string& password) {
    return Hex(DeriveRar3Key(password, "", LongPasswords::kPlain, Always)->key);
  };
  EXPECT_EQ(key_of(longest + "y"), key_of(longest));
  EXPECT_NE(key_of(longest), key_of(longest.substr(1)));
  const std::string salt = FromHex("0001020304050607");
  EXPECT_FALSE(IsLongRar3Password(std::string(28, 'x'), salt));
  EXPECT_TRUE(IsLongRar3Password(std::string(29, 'x'), salt));
}

const struct Rar5Row {
  const char* password;
  unsigned log2_rounds;
  const char *key, *checksum_key, *check, *encrypted;
  std::uint32_t crc32;
  const char* blake2sp;
} kRar5Rows[] = {
    {"password", 0, "e1b08f92be8174d9f442d95d89aa4ccdc311231a4d70d0b854d1548de8fabdfd",
     "2235a82d737d569fa9fdaa1be7f40f0d67a5c96f50bc304b6ff32f29e893b528", "e687d44db814b12a2b8a3077",
     "0ab3ea25c6691f0a06028cd6075cf3c5d3c7bb9b4a02694f8f882bd16a87423a", 0xA6366CF0,
     "124fdad07a2888a0875280529b3e7791bd8b11a138b557ad77d7b7deea6bcf19"},
    {"password", 15, "345bf51b5fe7f1716cfac8af9de4f57d7ceba914be4ebc8a6afbfe88678a10e8",
     "c9399711eeb4f7ca765fe95e8dfdb3cd89deb389b62cd0bc0bdb338c21da853a", "04442c9e2f50b54b68c7ecc1",
     "abc3b4929742ea0d938c7e197117cce65a102a4f5206062c10199dfb047347d2", 0xDA65F761,
     "82c6fef6f58447e90a1f3dc852d50ecb00fe658aa9182496983588547312b62b"},
    {"пароль", 10, "58edc8cea9307ed9468ff8bcb4d97fd455dd70b38447279f7f7c1c2e1349e96c",
     "a6d57643a75494123faab0d9644abfc5cdbd370633dbef3e69e69980d8d15900", "77ec5080999c8a1e23e6f811",
     "bc8d011408d7e88f3c02ed15026dd6d40a8896226600bd407ae8e054390e3e7d", 0x7B5D7252,
     "0fad7b0583e7d6ed56bd9922bfd2ddddd6ad784beeda3145be93a858c8e5705d"},
};
const std::string kRar5Salt = FromHex("000102030405060708090a0b0c0d0e0f");

GTEST_TEST(RarCiphers, DeriveTheKeysOfRar5) {
  const auto iv = ArrayOf<16>(FromHex("101112131415161718191a1b1c1d1e1f"));
  Blake2sp sum;
  sum.Add("abc");
  for (const Rar5Row& row : kRar5Rows) {
    const auto keys = DeriveRar5Keys(row.password, kRar5Salt, row.log2_rounds, Always);
    ASSERT_TRUE(keys);
    EXPECT_EQ(Hex(keys->key), row.key);
    EXPECT_EQ(Hex(keys->checksum_key), row.checksum_key);
    EXPECT_EQ(KeyedCrc32(*keys, 0xCBF43926), row.crc32);
    EXPECT_EQ(Hex(KeyedBlake2sp(*keys, sum.Value())), row.blake2sp);
    for (const std::size_t blocks : {2U, 1U}) {
      EXPECT_EQ(Decrypted(MakeAes256Cipher(keys->key, iv).get(), FromHex(row.encrypted), blocks), kPlain);
    }
    for (const Rar5Row& other : kRar5Rows) {
      EXPECT_EQ(CheckPassword(*keys, FromHex(other.check)),
                &other == &row ? PasswordCheck::kRight : PasswordCheck::kWrong);
    }
    std::string damaged = FromHex(row.check);
    damaged.back() ^= 1;
    EXPECT_EQ(CheckPassword(*keys, damaged), PasswordCheck::kUnknown);
    EXPECT_EQ(CheckPassword(*keys, FromHex(row.check) + 'x'), PasswordCheck::kUnknown);
  }
  std::string longest;
  for (int i = 0; i < 127; ++i) longest += "ж";
  const auto key_of = [](const std::string& password) {
    return DeriveRar5Keys(password, kRar5Salt, 0, Always)->key;
  };
  EXPECT_EQ(key_of(longest + "y"), key_of(longest));
  EXPECT_NE(key_of(longest), key_of(longest.substr(2)));
}

GTEST_TEST(RarCiphers, EndADerivationOnRequest) {
  int asked = 0;
  const auto five_times = [&asked] { return ++asked <= 5; };
  EXPECT_FALSE(DeriveRar3Key("password", "", LongPasswords::kChanging, five_times));
  EXPECT_EQ(asked, 6);
  asked = 0;
  EXPECT_FALSE(DeriveRar5Keys("password", kRar5Salt, kMostLog2Rounds, five_times));
  EXPECT_EQ(asked, 6);

  EXPECT_FALSE(DeriveRar5Keys("password", kRar5Salt, kMostLog2Rounds + 1, Always));
  EXPECT_FALSE(DeriveRar5Keys("", kRar5Salt, 0, Always));
  EXPECT_FALSE(DeriveRar3Key("", kRar5Salt, LongPasswords::kChanging, Always));
}

GTEST_TEST(RarCiphers, DeriveEachKeyOnce) {
  KeyCache<int> cache;
  int derived = 0;
  const auto get = [&](const char* password, const std::string& salt, unsigned variant) {
    return *cache.Get(password, salt, variant, [&] { return std::optional(++derived); });
  };
  EXPECT_EQ(get("a", "salt", 1), 1);
  EXPECT_EQ(get("a", "salt", 2), 2);
  EXPECT_EQ(get("b", "salt", 1), 3);
  EXPECT_EQ(get("a", "other salt", 1), 4);
  EXPECT_EQ(get("a", "salt", 1), 1);
  // The one that was used longest ago goes first.
  for (int i = 0; i < 61; ++i) get("c", std::to_string(i), 0);
  EXPECT_EQ(get("a", "salt", 1), 1);
  EXPECT_EQ(get("a", "salt", 2), 66);
  EXPECT_FALSE(cache.Get("d", "salt", 1, [] { return std::optional<int>(); }));
  EXPECT_EQ(get("d", "salt", 1), 67);
}

GTEST_TEST(RarCiphers, SumUpBytes) {
  std::string counting;
  for (int i = 0; i < 1024; ++i) counting += static_cast<char>(i);
  const struct {
    std::string bytes;
    const char* blake2sp;
    unsigned rotating;
  } rows[] = {
      {"", "dd0e891776933f43c7d032b08a917e25741f8aa9a12c12e1cac8801500f2ca4f", 0},
      {"abc", "70f75b58f1fecab821db43c88ad84edde5a52600616cd22517b7bb14d440a7d5", 0x556},
      {counting, "c9f79171d19c3703b7ebf9f762ce3fd24b302e2281f72da31a65014ff923c859", 0x68FF},
  };
  for (const auto& row : rows) {
    for (const std::size_t size : {1024U, 100U, 64U, 1U}) {
      Blake2sp blake2sp;
      RotatingSum rotating;
      for (std::string_view rest = row.bytes; !rest.empty();
           rest.remove_prefix(std::min(size, rest.size()))) {
        blake2sp.Add(rest.substr(0, size));
        rotating.Add(rest.substr(0, size));
      }
      EXPECT_EQ(Hex(blake2sp.Value()), row.blake2sp) << row.bytes.size() << " by " << size;
      EXPECT_EQ(rotating.Value(), row.rotating) << row.bytes.size() << " by " << size;
    }
  }
}

}  // namespace
}  // namespace quendle::modules
