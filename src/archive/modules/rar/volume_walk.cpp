#include "archive/modules/rar/volume_walk.h"

#include <utility>

#include "archive/modules/rar/header_search.h"

namespace quendle::modules {
void VolumeWalk::Encrypt(RarEncryption encryption, std::size_t prefix, std::string RarEncryption::*field) {
  encryption_ = std::move(encryption);
  header_.Encrypt(prefix, [this, field](const std::string& bytes) {
    encryption_.*field = bytes;
    std::unique_ptr<RarCipher> cipher;
    cipher_status_ = keys_->MakeCipher(encryption_, &cipher, &cipher_reason_);
    return cipher;
  });
}

void VolumeWalk::NoteHeader() {
  if (header_.AreEncrypted()) keys_->Prove();
  Fail(ReadStatus::kEnd, {});
}

void VolumeWalk::NoteProblem(Reason problem, std::size_t least) {
  if (cipher_status_ != ReadStatus::kOk) return Fail(cipher_status_, cipher_reason_);
  const bool is_wrong_key = header_.AreEncrypted() && !keys_->IsProven(encryption_) && header_.Read(least);
  if (is_wrong_key) return Fail(ReadStatus::kPassword, why::kWrongPassword);
  Fail(ReadStatus::kFailed, std::move(problem));
}

bool VolumeWalk::TakeOtherKey() {
  if (!header_.AreEncrypted() || keys_->IsProven(encryption_) || !keys_->HasOtherWay(encryption_))
    return false;
  keys_->TakeOtherWay();
  return true;
}

void VolumeWalk::Fail(ReadStatus status, Reason reason) {
  archive_.status = status;
  archive_.problem = std::move(reason);
}

bool VolumeWalk::Add(RarFile file) {
  if (archive_.files.size() >= kMostRarFiles) {
    Fail(ReadStatus::kFailed, why::kTooManyEntries);
    return false;
  }
  archive_.has_next = file.continues;
  archive_.files.push_back(std::move(file));
  return true;
}

bool VolumeWalk::SkipDamage(const std::function<bool(std::string_view bytes)>& may_be,
                            const std::function<bool(std::uint64_t position)>& is, std::uint64_t* position) {
  if (keys_ == nullptr || header_.AreEncrypted() || archive_.status != ReadStatus::kFailed) return false;
  if (damage_.empty()) damage_ = archive_.problem;
  const auto found = FindHeader(input_, *position + 1, end_, may_be, is);
  if (found) *position = *found;
  return found.has_value();
}

void VolumeWalk::NoteDamage() {
  if (!damage_.empty()) Fail(ReadStatus::kFailed, damage_);
}

}  // namespace quendle::modules
