#include "archive/modules/rar/rar4_blocks.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "archive/modules/common/checksum.h"
#include "archive/modules/common/little_endian.h"
#include "platform/text/unicode.h"

namespace quendle::modules {
namespace {

constexpr std::size_t kBlockSize = 7;       // what all blocks begin with
constexpr std::size_t kFileBlockSize = 32;  // without name and options
constexpr std::size_t kMainBlockSize = 13;
constexpr std::size_t kMostFiles = 1'000'000;  // beyond what anybody packs

enum BlockType : std::uint8_t {
  kMain = 0x73,
  kFile = 0x74,
  kOldFirst = 0x75,
  kOldLast = 0x79,
  kService = 0x7A,
  kEnd = 0x7B
};

struct Block {
  std::uint64_t position = 0;
  std::string bytes;
  std::uint64_t content_size = 0;

  std::uint64_t Number(std::size_t at, std::size_t width) const { return LittleEndian(bytes, at, width); }
  std::uint8_t Type() const { return static_cast<std::uint8_t>(bytes[2]); }
  bool Has(std::uint64_t flag) const { return (Number(3, 2) & flag) != 0; }
  bool IsFile() const { return Type() == kFile || Type() == kService; }
  std::uint64_t End() const { return position + bytes.size() + content_size; }

  std::size_t NamePosition() const { return kFileBlockSize + (Has(0x100) ? 8 : 0); }
  std::size_t NameEnd() const { return NamePosition() + static_cast<std::size_t>(Number(26, 2)); }
};

// Comments that old versions put into a block are not in its checksum.
bool ChecksumHolds(const Block& block) {
  std::size_t size = block.bytes.size();
  if (block.Type() == kMain && block.Has(0x02)) size = kMainBlockSize;
  if (block.Type() == kFile && block.Has(0x08)) size = block.NameEnd();
  if (block.Type() >= kOldFirst && block.Type() <= kOldLast) return true;
  return size <= block.bytes.size() &&
         (Crc32(std::string_view(block.bytes).substr(2, size - 2)) & 0xFFFF) == block.Number(0, 2);
}

// False, with the reason, for what is no block.
bool ReadBlock(const ArchiveInput& input, std::uint64_t position, std::uint64_t end, Block* block,
               Reason* problem) {
  std::size_t got = 0;
  *block = {position, std::string(kBlockSize, '\0'), 0};
  platform::Result result = input.ReadAt(position, block->bytes.data(), kBlockSize, &got);
  const auto size = static_cast<std::size_t>(block->Number(5, 2));
  *problem = why::kCutOffInHeader;
  if (!result.ok() || got < kBlockSize || size < kBlockSize || size > end - position) return false;
  block->bytes.resize(size);
  result = input.ReadAt(position, block->bytes.data(), size, &got);
  if (!result.ok() || got < size) return false;
  const std::size_t least = block->IsFile()          ? block->NameEnd()
                            : block->Type() == kMain ? kMainBlockSize
                                                     : kBlockSize;
  if (block->Type() < kMain || block->Type() > kEnd || size < least || !ChecksumHolds(*block)) return false;
  if (block->IsFile() || block->Has(0x8000)) block->content_size = block->Number(7, 4);
  if (block->IsFile() && block->Has(0x100)) block->content_size |= block->Number(32, 4) << 32;
  *problem = why::kCutOff;
  return block->content_size <= end - position - size;
}

// Times may have a part below the two seconds that DOS counts: up to three bytes of 100 nanoseconds.
std::int32_t BelowDosTime(const Block& block) {
  const std::size_t at = block.NameEnd() + (block.Has(0x400) ? 8 : 0);
  const std::uint64_t kind = block.Number(at, 2) >> 12;
  if (!block.Has(0x1000) || (kind & 8) == 0) return 0;
  const auto width = static_cast<std::size_t>(kind & 3);
  const std::uint64_t units = block.Number(at + 2, width) << (8 * (3 - width));
  return static_cast<std::int32_t>((kind & 4) != 0 ? 1'000'000'000 : 0) +
         static_cast<std::int32_t>(std::min<std::uint64_t>(units, 9'999'999) * 100);
}

// The form in which names in Unicode stand behind the same name in another encoding: pairs of bits say how each
// character differs from that one.
class UnicodeName {
 public:
  UnicodeName(std::string_view plain, std::string_view packed) : plain_(plain), packed_(packed) {}

  // As UTF-16, little-endian.
  std::string Unpack() {
    const unsigned high = Next();
    while (at_ < packed_.size() && utf16_.size() < 2 * kLongest) {
      const unsigned kinds = Next();
      for (int shift = 6; shift >= 0 && at_ < packed_.size(); shift -= 2) UnpackOne(kinds >> shift & 3, high);
    }
    return std::move(utf16_);
  }

 private:
  static constexpr std::size_t kLongest = 32'768;

  unsigned Next() { return at_ < packed_.size() ? static_cast<unsigned char>(packed_[at_++]) : 0; }
  void Put(unsigned low, unsigned high) {
    utf16_ += static_cast<char>(low & 0xFF);
    utf16_ += static_cast<char>(high);
  }
  void UnpackOne(unsigned kind, unsigned high) {
    if (kind == 0) return Put(Next(), 0);
    if (kind == 1) return Put(Next(), high);
    const unsigned first = Next();
    if (kind == 2) return Put(first, Next());
    const bool differs = (first & 0x80) != 0;
    const unsigned difference = differs ? Next() : 0;
    for (unsigned i = (first & 0x7F) + 2; i > 0 && utf16_.size() / 2 < plain_.size(); --i) {
      Put(static_cast<unsigned char>(plain_[utf16_.size() / 2]) + difference, differs ? high : 0);
    }
  }

  std::string_view plain_;
  std::string_view packed_;
  std::size_t at_ = 0;
  std::string utf16_;
};

void ReadName(const Block& block, RarFile* file) {
  const std::string_view name =
      std::string_view(block.bytes).substr(block.NamePosition(), block.NameEnd() - block.NamePosition());
  file->is_unicode = block.Has(0x200);
  const std::size_t plain = name.find('\0');
  if (!file->is_unicode || plain == std::string_view::npos) {
    file->name = name;  // without a second form it is UTF-8 when it is Unicode
  } else {
    file->name = platform::FromUtf16Le(UnicodeName(name.substr(0, plain), name.substr(plain + 1)).Unpack());
  }
}

RarFile ToFile(const Block& block, bool archive_is_solid) {
  RarFile file;
  file.position = block.position;
  file.content_position = block.position + block.bytes.size();
  ReadName(block, &file);
  file.packed_size = block.content_size;
  file.size = block.Number(11, 4) | (block.Has(0x100) ? block.Number(36, 4) << 32 : 0);
  file.host = static_cast<std::uint8_t>(block.Number(15, 1));
  file.crc = static_cast<std::uint32_t>(block.Number(16, 4));
  file.dos_time = static_cast<std::uint32_t>(block.Number(20, 4));
  file.nanoseconds = BelowDosTime(block);
  file.method = static_cast<std::uint8_t>(block.Number(25, 1));
  file.mode = static_cast<std::uint32_t>(block.Number(28, 4));
  file.continued = block.Has(0x01);
  file.continues = block.Has(0x02);
  file.encrypted = block.Has(0x04);
  const bool before_2 = block.Number(24, 1) < 20;
  file.solid = before_2 ? archive_is_solid : block.Has(0x10);
  file.is_folder = before_2 ? (file.mode & 0x10) != 0 && file.host != 3 : (block.Number(3, 2) & 0xE0) == 0xE0;
  return file;
}

}  // namespace

void ReadRar4Blocks(const ArchiveInput& input, std::uint64_t begin, std::uint64_t end, RarArchive* archive) {
  bool is_solid = false;
  bool has_main = false;
  // Versions before 3 wrote no last block, nor archives without files.
  bool wants_end = true;
  for (std::uint64_t position = begin; position < end || !has_main;) {
    Block block;
    if (!ReadBlock(input, position, end, &block, &archive->problem)) return;
    archive->problem = {};
    if (block.Type() == kMain) {
      has_main = true;
      is_solid = block.Has(0x08);
      archive->is_volume = block.Has(0x01);
      archive->names_encrypted = block.Has(0x80);
      if (archive->names_encrypted) return;
    } else if (block.Type() == kEnd) {
      archive->has_next = block.Has(0x01);
      return;
    } else if (block.Type() == kFile) {
      if (archive->files.size() >= kMostFiles) {
        archive->problem = why::kTooManyEntries;
        return;
      }
      archive->files.push_back(ToFile(block, is_solid));
      archive->has_next = archive->files.back().continues;
      const bool is_young = block.Number(24, 1) >= 29 || block.Has(0x1000);
      wants_end = is_young || (wants_end && archive->files.size() > 1);
    }
    position = block.End();
  }
  if (wants_end) archive->problem = why::kLastBlockMissing;
}

}  // namespace quendle::modules
