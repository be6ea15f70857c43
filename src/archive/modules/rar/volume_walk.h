// What going through the headers of one volume has in common for all versions that have checksums and encryption.
#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

#include "archive/modules/rar/header_bytes.h"
#include "archive/modules/rar/rar_headers.h"

namespace quendle::modules {

class VolumeWalk {
 public:
  // Headers in front of position `end`. What they say goes to `archive`. Null `keys`: encrypted ones are left alone.
  VolumeWalk(const ArchiveInput& input, std::uint64_t end, RarKeys* keys, RarArchive* archive)
      : input_(input), end_(end), keys_(keys), archive_(*archive), header_(input, end) {}

 protected:
  // The headers from now on are encrypted in this way. `prefix` bytes in front of each are its `field`.
  void Encrypt(RarEncryption encryption, std::size_t prefix, std::string RarEncryption::*field);

  // A header was read: there is no problem, and if it is encrypted the password is right.
  void NoteHeader();
  // None was, for that reason. Where it may be the password it is that. `least`: bytes that every header has.
  void NoteProblem(Reason problem, std::size_t least);
  // Is there another key to the header at hand? It is taken then.
  bool TakeOtherKey();

  void Fail(ReadStatus status, Reason reason);
  // False, and the archive has a problem, when there are too many files.
  bool Add(RarFile file);

  // Behind a damaged header at `*position` looks for the next one, as FindHeader does, and goes there. False: there is
  // none, or encrypted ones cannot be told from other bytes.
  bool SkipDamage(const std::function<bool(std::string_view bytes)>& may_be,
                  const std::function<bool(std::uint64_t position)>& is, std::uint64_t* position);
  // At the end: a header that was damaged is the archive's problem.
  void NoteDamage();

  const ArchiveInput& input_;
  const std::uint64_t end_;
  RarKeys* const keys_;
  RarArchive& archive_;
  HeaderBytes header_;

 private:
  RarEncryption encryption_;  // of the header at hand
  ReadStatus cipher_status_ = ReadStatus::kOk;
  Reason cipher_reason_;
  Reason damage_;  // the first one
};

}  // namespace quendle::modules
