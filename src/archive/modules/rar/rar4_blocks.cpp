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
constexpr std::size_t kFirstRead = 256;  // enough for most headers
constexpr std::size_t kMostOldContent = 1U << 20;
constexpr std::size_t kMostFiles = 1'000'000;  // beyond what anybody packs

enum BlockType : std::uint8_t {
  kMain = 0x73,
  kFile = 0x74,
  kOldComment = 0x75,
  kOldExtra = 0x76,
  kOldSub = 0x77,
  kOldSignature = 0x79,
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

// Where a file's fields end, and old versions put a comment: behind the salt and the times.
std::size_t FieldsEnd(const Block& block) {
  std::size_t end = block.NameEnd() + (block.Has(0x400) ? 8 : 0);
  if (!block.Has(0x1000)) return end;
  const std::uint64_t kinds = block.Number(end, 2);
  end += 2;
  for (int shift = 12; shift >= 0; shift -= 4) {
    const std::uint64_t kind = kinds >> shift;
    // The first time's seconds are a field of their own.
    if ((kind & 8) != 0) end += (shift == 12 ? 0 : 4) + static_cast<std::size_t>(kind & 3);
  }
  return end;
}

// How much of the header its checksum is over. Versions before 3 left out what they put behind their fields.
std::size_t SummedSize(const Block& block) {
  switch (block.Type()) {
    case kMain:
      return block.Has(0x02) ? kMainBlockSize + (block.Has(0x200) ? 1 : 0) : block.bytes.size();
    case kFile:
      return block.Has(0x08) ? FieldsEnd(block) : block.bytes.size();
    case kOldComment:
      return 13;
    case kOldExtra:
      return 14;
    case kOldSignature:
      return 15;
    default:
      return block.bytes.size();
  }
}

bool IsChecksum(const Block& block, std::string_view summed) {
  return (Crc32(summed) & 0xFFFF) == block.Number(0, 2);
}

// Some of the old blocks that tell of owners have their content in it, too.
bool HoldsWithContent(const ArchiveInput& input, const Block& block) {
  if (block.Type() != kOldSub || block.content_size > kMostOldContent) return false;
  std::string bytes = block.bytes;
  bytes.resize(bytes.size() + static_cast<std::size_t>(block.content_size));
  std::size_t got = 0;
  return input.ReadAt(block.position, bytes.data(), bytes.size(), &got).ok() && got == bytes.size() &&
         IsChecksum(block, std::string_view(bytes).substr(2));
}

// Writers were not of one mind about what it is over. Whatever it is over has to fit: a block that is passed over
// because of a damaged type may be a file.
bool ChecksumHolds(const ArchiveInput& input, const Block& block) {
  const std::string_view header(block.bytes);
  const std::size_t size = SummedSize(block);
  return (size <= header.size() && IsChecksum(block, header.substr(2, size - 2))) ||
         IsChecksum(block, header.substr(2)) || HoldsWithContent(input, block);
}

// Reads the header; false when the input ends before, or what stands there is none.
bool ReadHeader(const ArchiveInput& input, std::uint64_t position, std::uint64_t end, Block* block) {
  std::size_t got = 0;
  const auto room = static_cast<std::size_t>(std::min<std::uint64_t>(end - position, kFirstRead));
  *block = {position, std::string(std::max(room, kBlockSize), '\0'), 0};
  if (!input.ReadAt(position, block->bytes.data(), room, &got).ok() || got < kBlockSize) return false;
  const auto size = static_cast<std::size_t>(block->Number(5, 2));
  if (size < kBlockSize || size > end - position) return false;
  block->bytes.resize(size);
  if (size <= got) return true;
  return input.ReadAt(position, block->bytes.data(), size, &got).ok() && got == size;
}

// False, with the reason, for what is no block.
bool ReadBlock(const ArchiveInput& input, std::uint64_t position, std::uint64_t end, Block* block,
               Reason* problem) {
  *problem = why::kCutOffInHeader;
  if (!ReadHeader(input, position, end, block)) return false;
  const std::size_t size = block->bytes.size();
  const std::size_t least = block->IsFile()          ? block->NameEnd()
                            : block->Type() == kMain ? kMainBlockSize
                                                     : kBlockSize;
  if (block->Type() < kMain || block->Type() > kEnd || size < least) return false;
  if (block->IsFile() || block->Has(0x8000)) block->content_size = block->Number(7, 4);
  if (block->IsFile() && block->Has(0x100)) block->content_size |= block->Number(32, 4) << 32;
  if (!ChecksumHolds(input, *block)) return false;
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

bool BeginsRar4(const ArchiveInput& input, std::uint64_t begin) {
  Block block;
  Reason problem;
  return begin < input.Size() && ReadBlock(input, begin, input.Size(), &block, &problem) &&
         block.Type() == kMain;
}

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
      archive->end = block.End();
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
  archive->end = end;
  if (wants_end) archive->problem = why::kLastBlockMissing;
}

}  // namespace quendle::modules
