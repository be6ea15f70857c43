#include "archive/modules/rar/rar_content.h"

#include <algorithm>
#include <utility>

#include "archive/modules/rar/unpack/unpack15.h"
#include "archive/modules/rar/unpack/unpack20.h"
#include "archive/modules/rar/unpack/unpack29.h"
#include "archive/modules/rar/unpack/unpack50.h"

namespace quendle::modules {
namespace {

constexpr std::size_t kPieceSize = 64U << 10;

std::unique_ptr<Unpacker> MakeUnpacker(RarPacking packing) {
  switch (packing) {
    case RarPacking::k15:
      return std::make_unique<Unpack15>();
    case RarPacking::k20:
      return std::make_unique<Unpack20>();
    case RarPacking::k29:
      return std::make_unique<Unpack29>();
    case RarPacking::k50:
      return std::make_unique<Unpack50>();
    case RarPacking::kStored:
    case RarPacking::kUnknown:
      return nullptr;
  }
  return nullptr;
}

}  // namespace

void RarContent::Begin(const RarFile& file) {
  file_ = &file;
  sums_.emplace(file);
  problem_ = {};
  unpacks_ = file.IsPacked();
  // Until this one is read to its end there is nothing to go on with.
  const ReadStatus chain = unpacks_ ? std::exchange(chain_, ReadStatus::kFailed) : ReadStatus::kEnd;
  const bool goes_on = unpacks_ && file.is_solid;
  if (goes_on && (chain != ReadStatus::kEnd || unpacker_packing_ != file.packing)) {
    chain_ = chain == ReadStatus::kEnd ? ReadStatus::kFailed : chain;
    status_ = chain_;
    problem_ = why::kDataBeforeDamaged;
    return;
  }
  if (file.continued || file.continues) {
    status_ = ReadStatus::kFailed;
    problem_ = why::kPartMissing;
    return;
  }
  status_ = Open();
  if (unpacks_ && status_ != ReadStatus::kOk) chain_ = status_;
}

ReadStatus RarContent::Open() {
  std::unique_ptr<RarCipher> cipher;
  if (file_->encryption) {
    const ReadStatus status = keys_.MakeCipher(*file_->encryption, &cipher, &problem_);
    if (status != ReadStatus::kOk) return status;
    problem_ = {};
  }
  packed_.emplace(input_, file_->parts, std::move(cipher));
  if (!unpacks_) return ReadStatus::kOk;
  if (file_->packing == RarPacking::kUnknown) {
    problem_ = why::kUnsupportedMethod("RAR " + file_->method);
    return ReadStatus::kUnsupported;
  }
  if (!unpacker_ || unpacker_packing_ != file_->packing) unpacker_ = MakeUnpacker(file_->packing);
  unpacker_packing_ = file_->packing;
  unpacker_->Begin(&*packed_, {file_->size, file_->is_solid, file_->window, file_->has_far_distances});
  return ReadStatus::kOk;
}

ReadStatus RarContent::ReadStored(std::string_view* piece) {
  const std::uint64_t left = file_->size ? *file_->size - sums_->Size() : kPieceSize;
  if (left == 0) return ReadStatus::kEnd;
  stored_.resize(kPieceSize);
  std::size_t got = packed_->Read(stored_.data(), stored_.size());
  got = static_cast<std::size_t>(std::min<std::uint64_t>(got, left));
  *piece = {reinterpret_cast<const char*>(stored_.data()), got};
  if (got > 0) return ReadStatus::kOk;
  if (packed_->Problem().empty()) return ReadStatus::kEnd;
  problem_ = packed_->Problem();
  return ReadStatus::kFailed;
}

ReadStatus RarContent::Read(std::string_view* piece) {
  if (status_ != ReadStatus::kOk) return status_;
  status_ = unpacks_ ? unpacker_->Read(piece) : ReadStored(piece);
  if (status_ == ReadStatus::kOk) {
    sums_->Add(*piece);
    return status_;
  }
  if (unpacks_ && status_ != ReadStatus::kEnd) problem_ = unpacker_->Problem();
  return status_ = Finish();
}

void RarContent::PassOver(const RarFile& file, EntrySink* sink) {
  Begin(file);
  std::string_view ignored;
  while (sink->GoesOn() && Read(&ignored) == ReadStatus::kOk) {
  }
}

bool RarContent::Give(const RarFile& file, Entry entry, bool to_end, EntrySink* sink) {
  if (!sink->Begin(std::move(entry), true)) return false;
  Begin(file);
  auto wish = EntrySink::Wish::kMore;
  std::string_view piece;
  while (Read(&piece) == ReadStatus::kOk) {
    if (wish == EntrySink::Wish::kMore) wish = sink->Content(piece);
    if (wish == EntrySink::Wish::kStop) return false;
    if (wish == EntrySink::Wish::kSkip && (!to_end || !sink->GoesOn())) return true;
  }
  return wish != EntrySink::Wish::kMore || sink->End(status_, problem_);
}

// Of a file in several volumes, which of them is damaged; empty when that does not show.
Reason RarContent::DamagedVolume() const {
  for (const RarPart& part : file_->parts) {
    if (!part.crc) continue;
    const std::vector<RarPart> alone = {part};
    PackedContent bytes(input_, alone, nullptr);
    std::vector<std::uint8_t> buffer(kPieceSize);
    Crc32Sum sum;
    while (const std::size_t got = bytes.Read(buffer.data(), buffer.size()))
      sum.Add({reinterpret_cast<const char*>(buffer.data()), got});
    if (sum.Value() == part.crc) continue;
    std::size_t volume = input_.VolumeCount() - 1;
    while (input_.VolumeStart(volume) > part.position) --volume;
    return why::kVolumeDamaged(input_.Paths()[volume]);
  }
  return {};
}

// Only what comes out tells that a password was wrong, where it was not known to be right before.
ReadStatus RarContent::Finish() {
  const std::optional<RarEncryption>& encryption = file_->encryption;
  ReadStatus status = status_;
  if (status == ReadStatus::kEnd) {
    const auto keys = encryption && encryption->keyed_sums ? keys_.Keys5(*encryption) : std::nullopt;
    problem_ = sums_->Check(keys ? &*keys : nullptr);
    if (!problem_.empty()) status = ReadStatus::kFailed;
  }
  if (status == ReadStatus::kFailed && encryption && !keys_.IsProven(*encryption) &&
      packed_->Problem().empty()) {
    status = ReadStatus::kPassword;
    problem_ = why::kWrongPasswordOrDamaged(problem_);
  }
  // Checksums of parts may be changed by a key as well as not.
  if (status == ReadStatus::kFailed && !(encryption && encryption->keyed_sums)) {
    Reason volume = DamagedVolume();
    if (!volume.empty()) problem_ = std::move(volume);
  }
  // A wrong checksum of one file says little of those that go on with it: they have their own.
  if (unpacks_)
    chain_ = status_ == ReadStatus::kEnd && status != ReadStatus::kPassword ? ReadStatus::kEnd : status;
  return status;
}

}  // namespace quendle::modules
