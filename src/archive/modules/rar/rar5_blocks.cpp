#include "archive/modules/rar/rar5_blocks.h"

#include <algorithm>
#include <string_view>

#include "archive/modules/common/checksum.h"
#include "archive/modules/common/little_endian.h"

namespace quendle::modules {
namespace {

constexpr std::size_t kMostSize = 2U << 20;    // of a header, by the format
constexpr std::size_t kFirstRead = 256;        // enough for most headers
constexpr std::size_t kMostFiles = 1'000'000;  // beyond what anybody packs

enum BlockType : std::uint64_t { kMain = 1, kFile = 2, kEncryption = 4, kEnd = 5 };

// Numbers of seven bits a byte, the lowest first.
class Numbers {
 public:
  explicit Numbers(std::string_view bytes) : bytes_(bytes) {}

  std::uint64_t Next() {
    std::uint64_t value = 0;
    for (unsigned shift = 0; shift < 64; shift += 7) {
      if (at_ >= bytes_.size()) {
        failed_ = true;
        return 0;
      }
      const auto byte = static_cast<unsigned char>(bytes_[at_++]);
      value |= static_cast<std::uint64_t>(byte & 0x7F) << shift;
      if ((byte & 0x80) == 0) return value;
    }
    failed_ = true;
    return 0;
  }
  void Skip(std::size_t bytes) { at_ += bytes; }
  std::size_t Position() const { return at_; }
  bool Failed() const { return failed_; }

 private:
  std::string_view bytes_;
  std::size_t at_ = 0;
  bool failed_ = false;
};

struct Block {
  std::uint64_t type = 0;
  std::uint64_t flags = 0;
  std::string own;  // the fields of its type
  std::uint64_t end = 0;
};

bool Read(const ArchiveInput& input, std::uint64_t position, std::uint64_t size, std::string* bytes) {
  std::size_t got = 0;
  bytes->resize(static_cast<std::size_t>(size));
  return input.ReadAt(position, bytes->data(), bytes->size(), &got).ok() && got == bytes->size();
}

// False, with the reason, for what is no block.
bool ReadBlock(const ArchiveInput& input, std::uint64_t position, std::uint64_t end, Block* block,
               Reason* problem) {
  std::string bytes;
  *problem = why::kCutOffInHeader;
  if (!Read(input, position, std::min<std::uint64_t>(end - position, kFirstRead), &bytes) || bytes.size() < 7)
    return false;
  Numbers size_field(std::string_view(bytes).substr(4));
  const std::uint64_t size = 4 + size_field.Next();
  const std::uint64_t whole = size + size_field.Position();
  if (size_field.Failed() || size > kMostSize || whole > end - position) return false;
  if (!Read(input, position, whole, &bytes)) return false;
  if (Crc32(std::string_view(bytes).substr(4)) != LittleEndian(bytes, 0, 4)) return false;
  const std::string_view fields = std::string_view(bytes).substr(4 + size_field.Position());
  Numbers numbers(fields);
  block->type = numbers.Next();
  block->flags = numbers.Next();
  if ((block->flags & 1) != 0) numbers.Next();  // the size of the extra area, which is at the end
  const std::uint64_t content_size = (block->flags & 2) != 0 ? numbers.Next() : 0;
  if (numbers.Failed()) return false;
  block->own = fields.substr(numbers.Position());
  *problem = why::kCutOff;
  if (content_size > end - position - whole) return false;
  block->end = position + whole + content_size;
  return true;
}

void ReadMain(const Block& block, RarArchive* archive) {
  Numbers numbers(block.own);
  const std::uint64_t flags = numbers.Next();
  archive->is_volume = (flags & 1) != 0;
  archive->is_first = (flags & 2) == 0 || numbers.Next() == 0;
}

// The other kind of checksum that there may be stands in the extra area.
void ReadChecksum(const Block& block, RarFile* file) {
  Numbers numbers(block.own);
  const std::uint64_t flags = numbers.Next();
  file->size = numbers.Next();
  numbers.Next();  // attributes
  if ((flags & 2) != 0) numbers.Skip(4);
  file->has_crc = (flags & 4) != 0;
  if (file->has_crc) {
    file->crc = static_cast<std::uint32_t>(LittleEndian(block.own, numbers.Position(), 4));
    numbers.Skip(4);
  }
  file->method = static_cast<std::uint8_t>('0' + (numbers.Next() >> 7 & 7));
}

}  // namespace

void ReadRar5Blocks(const ArchiveInput& input, std::uint64_t begin, std::uint64_t end, RarArchive* archive) {
  for (std::uint64_t position = begin;;) {
    Block block;
    if (!ReadBlock(input, position, end, &block, &archive->problem)) return;
    archive->problem = {};
    if (block.type == kMain) {
      ReadMain(block, archive);
    } else if (block.type == kEncryption) {
      archive->names_encrypted = true;
      return;
    } else if (block.type == kEnd) {
      archive->has_next = (Numbers(block.own).Next() & 1) != 0;
      return;
    } else if (block.type == kFile) {
      if (archive->files.size() >= kMostFiles) {
        archive->problem = why::kTooManyEntries;
        return;
      }
      RarFile& file = archive->files.emplace_back();
      file.position = position;
      ReadChecksum(block, &file);
      file.continued = (block.flags & 8) != 0;
      file.continues = (block.flags & 16) != 0;
      archive->has_next = file.continues;
    }
    position = block.end;
  }
}

}  // namespace quendle::modules
