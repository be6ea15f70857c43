#include "archive/modules/rar/rar5_blocks.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

#include "archive/modules/common/checksum.h"
#include "archive/modules/common/little_endian.h"

namespace quendle::modules {
namespace {

constexpr std::size_t kMostSize = 2U << 20;    // of a header, by the format
constexpr std::size_t kMostMainSize = 4096;    // of the first header, with a name and times in it
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
  // The bytes that stand behind their number; empty when they are not all there.
  std::string Text() {
    const std::uint64_t size = Next();
    if (failed_ || at_ > bytes_.size() || size > bytes_.size() - at_) return "";
    return std::string(bytes_.substr(at_, static_cast<std::size_t>(size)));
  }
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
  std::string own;    // the fields of its type
  std::string extra;  // records behind them
  std::uint64_t end = 0;
};

bool Read(const ArchiveInput& input, std::uint64_t position, std::uint64_t size, std::string* bytes) {
  std::size_t got = 0;
  bytes->resize(static_cast<std::size_t>(size));
  return input.ReadAt(position, bytes->data(), bytes->size(), &got).ok() && got == bytes->size();
}

// False, with the reason, for what is no block.
bool ReadBlock(const ArchiveInput& input, std::uint64_t position, std::uint64_t end, std::size_t most,
               Block* block, Reason* problem) {
  std::string bytes;
  *problem = why::kCutOffInHeader;
  if (!Read(input, position, std::min<std::uint64_t>(end - position, kFirstRead), &bytes) || bytes.size() < 7)
    return false;
  Numbers size_field(std::string_view(bytes).substr(4));
  const std::uint64_t size = 4 + size_field.Next();
  const std::uint64_t whole = size + size_field.Position();
  if (size_field.Failed() || size > most || whole > end - position) return false;
  if (!Read(input, position, whole, &bytes)) return false;
  if (Crc32(std::string_view(bytes).substr(4)) != LittleEndian(bytes, 0, 4)) return false;
  const std::string_view fields = std::string_view(bytes).substr(4 + size_field.Position());
  Numbers numbers(fields);
  block->type = numbers.Next();
  block->flags = numbers.Next();
  const std::uint64_t extra_size = (block->flags & 1) != 0 ? numbers.Next() : 0;  // at the end
  const std::uint64_t content_size = (block->flags & 2) != 0 ? numbers.Next() : 0;
  if (numbers.Failed() || extra_size > fields.size() - numbers.Position()) return false;
  const auto own_end = fields.size() - static_cast<std::size_t>(extra_size);
  block->own = fields.substr(numbers.Position(), own_end - numbers.Position());
  block->extra = fields.substr(own_end);
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

// Its name, sizes and checksum. The other kind of checksum that there may be stands in the extra area.
void ReadFile(const Block& block, RarFile* file) {
  Numbers numbers(block.own);
  const std::uint64_t flags = numbers.Next();
  file->size = numbers.Next();
  numbers.Next();  // attributes
  if ((flags & 2) != 0) numbers.Skip(4);
  file->has_size = (flags & 8) == 0;
  file->has_crc = (flags & 4) != 0;
  if (file->has_crc) {
    file->crc = static_cast<std::uint32_t>(LittleEndian(block.own, numbers.Position(), 4));
    numbers.Skip(4);
  }
  file->method = static_cast<std::uint8_t>('0' + (numbers.Next() >> 7 & 7));
  numbers.Next();  // system
  file->name = numbers.Text();
}

// The name of an earlier file of which this one has the content: a hard link, or what was packed once only. Nothing when
// it has its own.
std::optional<std::string> SourceOf(const Block& block) {
  constexpr std::uint64_t kRedirection = 5;
  constexpr std::uint64_t kHardLink = 4;
  constexpr std::uint64_t kCopy = 5;
  for (std::string_view records = block.extra; !records.empty();) {
    Numbers sizes(records);
    const std::uint64_t size = sizes.Next();
    records.remove_prefix(std::min(sizes.Position(), records.size()));
    if (sizes.Failed() || size > records.size()) break;
    Numbers record(records.substr(0, static_cast<std::size_t>(size)));
    records.remove_prefix(static_cast<std::size_t>(size));
    if (record.Next() != kRedirection) continue;
    const std::uint64_t kind = record.Next();
    record.Next();  // whether it leads to a folder
    if (kind == kHardLink || kind == kCopy) return record.Text();
  }
  return std::nullopt;
}

}  // namespace

bool BeginsRar5(const ArchiveInput& input, std::uint64_t begin) {
  Block block;
  Reason problem;
  return begin < input.Size() && ReadBlock(input, begin, input.Size(), kMostMainSize, &block, &problem) &&
         (block.type == kMain || block.type == kEncryption);
}

void ReadRar5Blocks(const ArchiveInput& input, std::uint64_t begin, std::uint64_t end, RarArchive* archive) {
  for (std::uint64_t position = begin;;) {
    Block block;
    if (!ReadBlock(input, position, end, kMostSize, &block, &archive->problem)) return;
    archive->problem = {};
    if (block.type == kMain) {
      ReadMain(block, archive);
    } else if (block.type == kEncryption) {
      archive->names_encrypted = true;
      return;
    } else if (block.type == kEnd) {
      archive->has_next = (Numbers(block.own).Next() & 1) != 0;
      archive->end = block.end;
      return;
    } else if (block.type == kFile) {
      if (archive->files.size() >= kMostFiles) {
        archive->problem = why::kTooManyEntries;
        return;
      }
      RarFile& file = archive->files.emplace_back();
      file.position = position;
      ReadFile(block, &file);
      file.source = SourceOf(block);
      file.continued = (block.flags & 8) != 0;
      file.continues = (block.flags & 16) != 0;
      archive->has_next = file.continues;
    }
    position = block.end;
  }
}

}  // namespace quendle::modules
