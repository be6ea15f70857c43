#include "archive/modules/rar/rar5_blocks.h"

#include <string>
#include <utility>

#include "archive/modules/rar/rar5_block.h"
#include "archive/modules/rar/rar5_file.h"
#include "archive/modules/rar/volume_walk.h"

namespace quendle::modules {
namespace {

constexpr std::size_t kMostSize = 2U << 20;    // of a header, by the format
constexpr std::size_t kMostMainSize = 4096;    // of the first header, with a name and times in it
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

class Rar5Walk final : private VolumeWalk {
 public:
  using VolumeWalk::VolumeWalk;

  void From(std::uint64_t position);

 private:
  bool ReadBlock(std::uint64_t position);
  bool AddFile();
  bool GoBehindDamage(std::uint64_t* position);

  Rar5Block block_;
};

bool Rar5Walk::ReadBlock(std::uint64_t position) {
  Reason problem;
  const bool is_read = ReadRar5Block(&header_, position, end_, kMostSize, &block_, &problem);
  is_read ? NoteHeader() : NoteProblem(problem, 1);
  return is_read;
}

bool Rar5Walk::AddFile() {
  RarFile file;
  if (ReadRar5File(block_, &file)) return Add(std::move(file));
  Fail(ReadStatus::kFailed, why::kCutOffInHeader);
  return false;
}

// A content that is cut off is there in part, so that its file is named, and nothing is behind it.
bool Rar5Walk::GoBehindDamage(std::uint64_t* position) {
  if (archive_.problem == why::kCutOff && block_.type == Rar5Block::kFile) {
    block_.content_size = end_ - block_.content_position;
    AddFile();
    return false;
  }
  const auto may_be = [](std::string_view bytes) {
    Rar5Numbers numbers(bytes.substr(4));
    return numbers.Next() <= kMostSoughtSize && numbers.Next() == Rar5Block::kFile;
  };
  const auto is = [this](std::uint64_t candidate) {
    Reason ignored;
    return ReadRar5Block(&header_, candidate, end_, kMostSoughtSize, &block_, &ignored);
  };
  return SkipDamage(may_be, is, position);
}

void Rar5Walk::From(std::uint64_t position) {
  for (bool has_end = false; !has_end;) {
    if (!ReadBlock(position)) {
      if (GoBehindDamage(&position)) continue;
      break;
    }
    if (block_.type == Rar5Block::kMain) {
      ReadMain(block_, &archive_);
    } else if (block_.type == Rar5Block::kEncryption && !header_.AreEncrypted()) {
      archive_.is_encrypted = true;
      if (keys_ == nullptr) return;
      Encrypt(ReadEncryption(block_), kIvSize, &RarEncryption::iv);
    } else if (block_.type == Rar5Block::kEnd) {
      has_end = true;
      archive_.has_next = (Rar5Numbers(block_.own).Next() & 1) != 0;
      archive_.end = block_.End();
    } else if (block_.type == Rar5Block::kFile && !AddFile()) {
      break;
    }
    position = block_.End();
  }
  NoteDamage();
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
