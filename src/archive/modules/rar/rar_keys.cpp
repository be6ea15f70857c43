#include "archive/modules/rar/rar_keys.h"

#include <algorithm>

#include "archive/modules/rar/ciphers/aes_cipher.h"
#include "archive/modules/rar/ciphers/cipher13.h"
#include "archive/modules/rar/ciphers/cipher15.h"
#include "archive/modules/rar/ciphers/cipher20.h"
#include "platform/text/unicode.h"

namespace quendle::modules {
namespace {

using Kind = RarEncryption::Kind;

bool TakesBytes(Kind kind) {
  return kind == Kind::kRar13 || kind == Kind::kRar15 || kind == Kind::kRar20;
}

std::unique_ptr<RarCipher> MakeOldCipher(Kind kind, std::string_view password) {
  if (kind == Kind::kRar13) return MakeCipher13(password);
  return kind == Kind::kRar15 ? MakeCipher15(password) : MakeCipher20(password);
}

}  // namespace

ReadStatus RarKeys::MakeCipher(const RarEncryption& encryption, std::unique_ptr<RarCipher>* cipher,
                               Reason* reason) {
  if (encryption.kind == Kind::kUnknown || encryption.log2_rounds > kMostLog2Rounds) {
    *reason = why::kUnknownEncryption("RAR");
    return ReadStatus::kUnsupported;
  }
  const std::optional<std::string> password = password_();
  *reason = password ? why::kWrongPassword : why::kNoPassword;
  if (!password || password->empty()) return ReadStatus::kPassword;
  if (!TakesBytes(encryption.kind)) return MakeAes(encryption, cipher, reason);
  *cipher = MakeOldCipher(encryption.kind, *password);
  return ReadStatus::kOk;
}

ReadStatus RarKeys::MakeAes(const RarEncryption& encryption, std::unique_ptr<RarCipher>* cipher,
                            Reason* reason) {
  // A password that was turned into bytes of another encoding is none for these.
  if (!platform::IsUtf8(*password_())) return ReadStatus::kPassword;
  if (encryption.kind == Kind::kRar3) {
    if (const auto key = Key3(encryption)) *cipher = MakeAes128Cipher(key->key, key->iv);
  } else if (const auto keys = Keys5(encryption)) {
    const PasswordCheck check =
        encryption.check.empty() ? PasswordCheck::kUnknown : CheckPassword(*keys, encryption.check);
    if (check == PasswordCheck::kWrong) return ReadStatus::kPassword;
    if (check == PasswordCheck::kRight) proven_salt_ = encryption.salt;
    AesBlock iv{};
    std::copy_n(encryption.iv.begin(), std::min(iv.size(), encryption.iv.size()), iv.begin());
    *cipher = MakeAes256Cipher(keys->key, iv);
  }
  if (*cipher) return ReadStatus::kOk;
  *reason = why::kCancelled;
  return ReadStatus::kFailed;
}

std::optional<Rar3Key> RarKeys::Key3(const RarEncryption& encryption) {
  const std::string password = *password_();
  return keys3_.Get(password, encryption.salt, static_cast<unsigned>(way_),
                    [&] { return DeriveRar3Key(password, encryption.salt, way_, goes_on_); });
}

std::optional<Rar5Keys> RarKeys::Keys5(const RarEncryption& encryption) {
  const std::string password = *password_();
  return keys5_.Get(password, encryption.salt, encryption.log2_rounds, [&] {
    return DeriveRar5Keys(password, encryption.salt, encryption.log2_rounds, goes_on_);
  });
}

bool RarKeys::HasOtherWay(const RarEncryption& encryption) const {
  const std::optional<std::string> password = password_();
  return encryption.kind == Kind::kRar3 && way_ == LongPasswords::kChanging && password &&
         IsLongRar3Password(*password, encryption.salt);
}

}  // namespace quendle::modules
