#include "archive/modules/rar/rar5_blocks.h"

#include <string>
#include <utility>

#include "archive/modules/rar/header_search.h"
#include "archive/modules/rar/rar5_block.h"
#include "archive/modules/rar/rar5_file.h"

namespace quendle::modules {
namespace {

constexpr std::size_t kMostSize = 2U << 20;    // of a header, by the format
constexpr std::size_t kMostMainSize = 4096;    // of the first header, with a name and times in it
constexpr std::size_t kMostFiles = 1'000'000;  // beyond what anybody packs
constexpr std::size_t kMostSoughtSize = 4096;  // of a header behind a damaged one
constexpr std::size_t kIvSize = 16;

void ReadMain(const Rar5Block& block, RarArchive* archive) {
  Rar5Numbers numbers(block.own);
  const std::uint64_t flags = numbers.Next();
  archive->is_volume = (flags & 1) != 0;
  archive->number = (flags & 2) != 0 ? numbers.Next() : 0;
  archive->is_first = archive->number == 0U;
}

RarEncryption ReadEncryption(const Rar5Block& block) {
  RarEncryption encryption;
  Rar5Numbers numbers(block.own);
  const std::uint64_t version = numbers.Next();
  const std::uint64_t flags = numbers.Next();
  encryption.log2_rounds = static_cast<unsigned>(numbers.Fixed(1));
  encryption.salt = numbers.Bytes(16);
  if ((flags & 1) != 0) encryption.check = numbers.Bytes(12);
  const bool is_known = version == 0 && !numbers.Failed();
  encryption.kind = is_known ? RarEncryption::Kind::kRar5 : RarEncryption::Kind::kUnknown;
  return encryption;
}

// Goes through the blocks of one volume.
class Rar5Walk {
 public:
  Rar5Walk(const ArchiveInput& input, std::uint64_t end, RarKeys* keys, RarArchive* archive)
      : input_(input), end_(end), keys_(keys), archive_(*archive), header_(input, end) {}

  void From(std::uint64_t position);

 private:
  bool ReadBlock(std::uint64_t position);
  bool SkipDamage(std::uint64_t* position);
  void Encrypt();
  bool AddFile();
  bool Fail(ReadStatus status, Reason reason);

  const ArchiveInput& input_;
  const std::uint64_t end_;
  RarKeys* const keys_;
  RarArchive& archive_;
  HeaderBytes header_;
  Rar5Block block_;
  RarEncryption encryption_;
  ReadStatus cipher_status_ = ReadStatus::kOk;
  Reason cipher_reason_;
  Reason damage_;  // of a header, behind which others were found
};

bool Rar5Walk::Fail(ReadStatus status, Reason reason) {
  archive_.status = status;
  archive_.problem = std::move(reason);
  return false;
}

// The first block that is encrypted tells whether the password is right.
bool Rar5Walk::ReadBlock(std::uint64_t position) {
  Reason problem;
  if (ReadRar5Block(&header_, position, end_, kMostSize, &block_, &problem)) {
    if (header_.AreEncrypted()) keys_->Prove();
    Fail(ReadStatus::kEnd, {});
    return true;
  }
  if (cipher_status_ != ReadStatus::kOk) return Fail(cipher_status_, cipher_reason_);
  const bool is_wrong = header_.AreEncrypted() && !keys_->IsProven(encryption_) && header_.Read(1);
  return is_wrong ? Fail(ReadStatus::kPassword, why::kWrongPassword) : Fail(ReadStatus::kFailed, problem);
}

void Rar5Walk::Encrypt() {
  encryption_ = ReadEncryption(block_);
  header_.Encrypt(kIvSize, [this](const std::string& iv) {
    encryption_.iv = iv;
    std::unique_ptr<RarCipher> cipher;
    cipher_status_ = keys_->MakeCipher(encryption_, &cipher, &cipher_reason_);
    return cipher;
  });
}

bool Rar5Walk::AddFile() {
  if (archive_.files.size() >= kMostFiles) return Fail(ReadStatus::kFailed, why::kTooManyEntries);
  RarFile file;
  if (!ReadRar5File(block_, &file)) return Fail(ReadStatus::kFailed, why::kCutOffInHeader);
  archive_.has_next = file.continues;
  archive_.files.push_back(std::move(file));
  return true;
}

// Behind a damaged header the next file is looked for. The content of one that is cut off is there in part, so that it is
// named, and nothing is behind it.
bool Rar5Walk::SkipDamage(std::uint64_t* position) {
  if (archive_.problem == why::kCutOff && block_.type == Rar5Block::kFile) {
    block_.content_size = end_ - block_.content_position;
    AddFile();
    return false;
  }
  if (keys_ == nullptr || header_.AreEncrypted() || archive_.status != ReadStatus::kFailed) return false;
  if (damage_.empty()) damage_ = archive_.problem;
  const auto may_be = [](std::string_view bytes) {
    Rar5Numbers numbers(bytes.substr(4));
    return numbers.Next() <= kMostSoughtSize && numbers.Next() == Rar5Block::kFile;
  };
  const auto is = [this](std::uint64_t candidate) {
    Reason ignored;
    return ReadRar5Block(&header_, candidate, end_, kMostSoughtSize, &block_, &ignored);
  };
  const auto found = FindHeader(input_, *position + 1, end_, may_be, is);
  if (found) *position = *found;
  return found.has_value();
}

void Rar5Walk::From(std::uint64_t position) {
  for (bool has_end = false; !has_end;) {
    if (!ReadBlock(position)) {
      if (SkipDamage(&position)) continue;
      break;
    }
    if (block_.type == Rar5Block::kMain) {
      ReadMain(block_, &archive_);
    } else if (block_.type == Rar5Block::kEncryption && !header_.AreEncrypted()) {
      archive_.is_encrypted = true;
      if (keys_ == nullptr) return;
      Encrypt();
    } else if (block_.type == Rar5Block::kEnd) {
      has_end = true;
      archive_.has_next = (Rar5Numbers(block_.own).Next() & 1) != 0;
      archive_.end = block_.End();
    } else if (block_.type == Rar5Block::kFile && !AddFile()) {
      break;
    }
    position = block_.End();
  }
  if (!damage_.empty()) Fail(ReadStatus::kFailed, damage_);
}

}  // namespace

bool BeginsRar5(const ArchiveInput& input, std::uint64_t begin) {
  HeaderBytes header(input, input.Size());
  Rar5Block block;
  Reason problem;
  return ReadRar5Block(&header, begin, input.Size(), kMostMainSize, &block, &problem) &&
         (block.type == Rar5Block::kMain || block.type == Rar5Block::kEncryption);
}

void ReadRar5Blocks(const ArchiveInput& input, std::uint64_t begin, std::uint64_t end, RarKeys* keys,
                    RarArchive* archive) {
  Rar5Walk(input, end, keys, archive).From(begin);
}

}  // namespace quendle::modules
