#include "archive/modules/rar/rar4_blocks.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "archive/modules/common/entry_times.h"
#include "archive/modules/rar/rar4_block.h"
#include "archive/modules/rar/rar4_names.h"
#include "archive/modules/rar/volume_walk.h"

namespace quendle::modules {
namespace {

constexpr unsigned kUnix = 3;
constexpr unsigned kBeOs = 5;

// Times may have a part below the two seconds that DOS counts: up to three bytes of 100 nanoseconds.
void AddBelowDosTime(const Rar4Block& block, platform::EntryTime* time) {
  const std::size_t at = block.TimesPosition();
  const std::uint64_t kind = block.Number(at, 2) >> 12;
  if (!block.HasTimes() || (kind & 8) == 0) return;
  const auto width = static_cast<std::size_t>(kind & 3);
  const std::uint64_t units = block.Number(at + 2, width) << (8 * (3 - width));
  if ((kind & 4) != 0) ++time->seconds;
  time->nanoseconds = static_cast<std::int32_t>(std::min<std::uint64_t>(units, 9'999'999) * 100);
}

void ReadName(const Rar4Block& block, RarFile* file) {
  const std::string_view name =
      std::string_view(block.bytes).substr(block.NamePosition(), block.NameEnd() - block.NamePosition());
  file->is_unicode = block.Has(0x200);
  const std::size_t plain = name.find('\0');
  // Without a second form it is UTF-8 when it is Unicode.
  file->name = file->is_unicode && plain != name.npos
                   ? NameInUnicode(name.substr(0, plain), name.substr(plain + 1))
                   : name;
}

void ReadKind(const Rar4Block& block, RarFile* file) {
  constexpr std::uint64_t kKindOfMode = 0170000;
  const std::uint64_t host = block.Number(15, 1);
  const std::uint64_t mode = block.Number(28, 4);
  const bool is_unix = host == kUnix || host == kBeOs;
  const std::uint64_t kind = is_unix ? mode & kKindOfMode : 0;
  const bool is_dos_folder = block.Number(24, 1) < 20 && !is_unix && (mode & 0x10) != 0;
  if (kind == 0120000) {
    file->kind = EntryKind::kLink;
  } else if (kind == 0040000 || is_dos_folder ||
             (block.Number(24, 1) >= 20 && (block.Number(3, 2) & 0xE0) == 0xE0)) {
    file->kind = EntryKind::kFolder;
  } else if (kind == 0010000 || kind == 0020000 || kind == 0060000 || kind == 0140000) {
    file->kind = EntryKind::kOther;  // a pipe, a device, a socket
  }
  file->attributes.executable = is_unix && (mode & 0111) != 0;
}

void ReadPacking(const Rar4Block& block, RarFile* file) {
  const std::uint64_t version = block.Number(24, 1);
  const char method = static_cast<char>(block.Number(25, 1));
  file->method = std::string("m").append(1, method).append(" of version ").append(std::to_string(version));
  file->window = std::uint64_t{64 << 10} << (block.Number(3, 2) >> 5 & 7);
  if (method == '0') {
    file->packing = RarPacking::kStored;
  } else if (method > '0' && method <= '5') {
    file->packing = version == 13 || version == 15   ? RarPacking::k15
                    : version == 20 || version == 26 ? RarPacking::k20
                    : version == 29 || version == 36 ? RarPacking::k29
                                                     : RarPacking::kUnknown;
  }
}

void ReadEncryption(const Rar4Block& block, RarFile* file) {
  using Kind = RarEncryption::Kind;
  if (!block.Has(0x04)) return;
  const std::uint64_t version = block.Number(24, 1);
  RarEncryption& encryption = file->encryption.emplace();
  encryption.kind = version == 13                    ? Kind::kRar13
                    : version == 15                  ? Kind::kRar15
                    : version == 20 || version == 26 ? Kind::kRar20
                                                     : Kind::kRar3;
  if (block.HasSalt() && block.NameEnd() + 8 <= block.bytes.size())
    encryption.salt = block.bytes.substr(block.NameEnd(), 8);
}

// Before version 2 the archive says for all files but the first that they are solid.
RarFile ToFile(const Rar4Block& block, bool old_is_solid) {
  RarFile file;
  ReadName(block, &file);
  ReadKind(block, &file);
  ReadPacking(block, &file);
  ReadEncryption(block, &file);
  file.parts = {{block.content_position, block.content_size}};
  const bool is_large = block.Has(0x100);
  const std::uint64_t size = block.Number(11, 4) | (is_large ? block.Number(36, 4) << 32 : 0);
  const bool is_unknown = size == (is_large ? ~std::uint64_t{0} : 0xFFFFFFFF);
  if (!is_unknown) file.size = size;
  file.crc = static_cast<std::uint32_t>(block.Number(16, 4));
  file.attributes.write_time = TimeFromDos(static_cast<std::uint32_t>(block.Number(20, 4)));
  if (file.attributes.write_time) AddBelowDosTime(block, &*file.attributes.write_time);
  file.continued = block.Has(0x01);
  file.continues = block.Has(0x02);
  file.is_solid = block.Number(24, 1) < 20 ? old_is_solid : block.Has(0x10);
  return file;
}

class Rar4Walk final : private VolumeWalk {
 public:
  using VolumeWalk::VolumeWalk;

  void From(std::uint64_t position);

 private:
  bool ReadBlock(std::uint64_t position);
  void ReadMain();
  bool AddFile();
  bool GoBehindDamage(std::uint64_t* position);
  void NoteEnd(std::uint64_t position, bool has_block);

  Rar4Block block_;
  bool is_solid_ = false;
  bool has_packed_ = false;  // a file that solid ones can go on with
  bool is_young_ = false;    // made by version 3 or later
};

bool Rar4Walk::ReadBlock(std::uint64_t position) {
  Reason problem;
  const auto read = [&] { return ReadRar4Block(input_, &header_, position, end_, &block_, &problem); };
  const bool is_read = read() || (TakeOtherKey() && read());
  is_read ? NoteHeader() : NoteProblem(problem, Rar4Block::kSize);
  return is_read;
}

void Rar4Walk::ReadMain() {
  is_solid_ = block_.Has(0x08);
  archive_.is_volume = block_.Has(0x01);
  archive_.is_encrypted = block_.Has(0x80);
  // The flag for the first volume is as young as version 3, and so are encrypted headers.
  if (archive_.is_encrypted) archive_.is_first = !archive_.is_volume || block_.Has(0x100);
  if (!archive_.is_encrypted || keys_ == nullptr) return;
  RarEncryption encryption;
  encryption.kind = RarEncryption::Kind::kRar3;
  Encrypt(encryption, 8, &RarEncryption::salt);
}

bool Rar4Walk::AddFile() {
  RarFile file = ToFile(block_, is_solid_ && has_packed_);
  has_packed_ = has_packed_ || (file.packing != RarPacking::kStored && file.kind == EntryKind::kFile);
  is_young_ = is_young_ || block_.Number(24, 1) >= 29 || block_.HasTimes();
  return Add(std::move(file));
}

// A content that is cut off is there in part, so that its file is named, and nothing is behind it.
bool Rar4Walk::GoBehindDamage(std::uint64_t* position) {
  if (archive_.problem == why::kCutOff && block_.TypeCode() == Rar4Block::kFile) {
    block_.content_size = end_ - block_.content_position;
    AddFile();
    return false;
  }
  const auto may_be = [](std::string_view bytes) {
    return static_cast<std::uint8_t>(bytes[2]) == Rar4Block::kFile && bytes[6] < 4;
  };
  const auto is = [this](std::uint64_t candidate) {
    Reason ignored;
    return ReadRar4Block(input_, &header_, candidate, end_, &block_, &ignored);
  };
  return SkipDamage(may_be, is, position);
}

void Rar4Walk::From(std::uint64_t position) {
  bool has_main = false;
  bool has_end = false;
  while (!has_end && (position < end_ || !has_main)) {
    if (!ReadBlock(position)) {
      if (GoBehindDamage(&position)) continue;
      break;
    }
    if (block_.TypeCode() == Rar4Block::kMain) {
      has_main = true;
      ReadMain();
      if (archive_.is_encrypted && keys_ == nullptr) return;
    } else if (block_.TypeCode() == Rar4Block::kEnd) {
      has_end = true;
      archive_.has_next = block_.Has(0x01);
      if (block_.Has(0x08)) archive_.number = block_.Number(block_.Has(0x02) ? 11 : 7, 2);
    } else if (block_.TypeCode() == Rar4Block::kFile && !AddFile()) {
      break;
    }
    position = block_.End();
  }
  if (archive_.problem.empty()) NoteEnd(has_end ? position : end_, has_end);
  NoteDamage();
}

// Versions before 3 wrote no last block, nor archives without files; later ones can be told to write none. Where there
// is one file that is whole, nothing is likely to be missing.
void Rar4Walk::NoteEnd(std::uint64_t position, bool has_block) {
  archive_.end = position;
  const bool may_have_more =
      archive_.files.size() > 1 || archive_.is_volume || is_solid_ || archive_.is_encrypted;
  const bool needs_block = archive_.files.empty() || (is_young_ && may_have_more);
  if (needs_block && !has_block) Fail(ReadStatus::kFailed, why::kLastBlockMissing);
}

}  // namespace

bool BeginsRar4(const ArchiveInput& input, std::uint64_t begin) {
  HeaderBytes header(input, input.Size());
  Rar4Block block;
  Reason problem;
  return ReadRar4Block(input, &header, begin, input.Size(), &block, &problem) &&
         block.TypeCode() == Rar4Block::kMain;
}

void ReadRar4Blocks(const ArchiveInput& input, std::uint64_t begin, std::uint64_t end, RarKeys* keys,
                    RarArchive* archive) {
  Rar4Walk(input, end, keys, archive).From(begin);
}

}  // namespace quendle::modules
