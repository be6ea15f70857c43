// Opening what is encrypted in a RAR archive, with the one password of a reading.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "archive/modules/common/entry_reader.h"
#include "archive/modules/rar/ciphers/key_cache.h"
#include "archive/modules/rar/ciphers/rar3_key.h"
#include "archive/modules/rar/ciphers/rar5_key.h"
#include "archive/modules/rar/ciphers/rar_cipher.h"

namespace quendle::modules {

// How an entry, or the list of them, is encrypted.
struct RarEncryption {
  enum class Kind { kRar13, kRar15, kRar20, kRar3, kRar5, kUnknown };
  Kind kind = Kind::kUnknown;
  std::string salt;  // 16 bytes of RAR 5; 8 or none of RAR 3
  std::string iv;    // of RAR 5
  unsigned log2_rounds = 0;
  std::string check;        // of RAR 5: what tells a wrong password, 12 bytes or none
  bool keyed_sums = false;  // of RAR 5: checksums are changed by the key
};

class RarKeys {
 public:
  // `password` as in ReaderOptions. `goes_on`: is anything still wanted? Keys can take seconds.
  RarKeys(std::function<std::optional<std::string>()> password, std::function<bool()> goes_on)
      : password_(std::move(password)), goes_on_(std::move(goes_on)) {}

  // kOk, and a cipher at the beginning of what is encrypted that way; or why there is none.
  ReadStatus MakeCipher(const RarEncryption& encryption, std::unique_ptr<RarCipher>* cipher, Reason* reason);

  // Of RAR 5, once its cipher was made.
  std::optional<Rar5Keys> Keys5(const RarEncryption& encryption);

  // Is the password known to be the right one for that? It stays so.
  bool IsProven(const RarEncryption& encryption) const {
    return is_proven_ || proven_salt_ == encryption.salt;
  }
  // It has opened a list of entries.
  void Prove() { is_proven_ = true; }

  // Passwords that are longer than the blocks of SHA-1 have a second way to a key, and only what comes of it tells
  // which one it was.
  bool HasOtherWay(const RarEncryption& encryption) const;
  void TakeOtherWay() { way_ = LongPasswords::kPlain; }

 private:
  std::optional<Rar3Key> Key3(const RarEncryption& encryption);
  ReadStatus MakeAes(const RarEncryption& encryption, std::unique_ptr<RarCipher>* cipher, Reason* reason);

  std::function<std::optional<std::string>()> password_;
  std::function<bool()> goes_on_;
  LongPasswords way_ = LongPasswords::kChanging;
  bool is_proven_ = false;
  std::optional<std::string> proven_salt_;
  KeyCache<Rar3Key> keys3_;
  KeyCache<Rar5Keys> keys5_;
};

}  // namespace quendle::modules
