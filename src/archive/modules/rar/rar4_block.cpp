#include "archive/modules/rar/rar4_block.h"

#include <string_view>

#include "archive/modules/common/checksum.h"

namespace quendle::modules {
namespace {

constexpr std::size_t kMostOldContent = 1U << 20;

// Where a file's fields end, and old versions put a comment: behind the salt and the times.
std::size_t FieldsEnd(const Rar4Block& block) {
  std::size_t end = block.TimesPosition();
  if (!block.HasTimes()) return end;
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
std::size_t SummedSize(const Rar4Block& block) {
  switch (block.TypeCode()) {
    case Rar4Block::kMain:
      return block.Has(0x02) ? Rar4Block::kMainSize + (block.Has(0x200) ? 1 : 0) : block.bytes.size();
    case Rar4Block::kFile:
      return block.Has(0x08) ? FieldsEnd(block) : block.bytes.size();
    case Rar4Block::kOldComment:
      return 13;
    case Rar4Block::kOldExtra:
      return 14;
    case Rar4Block::kOldSignature:
      return 15;
    default:
      return block.bytes.size();
  }
}

bool IsChecksum(const Rar4Block& block, std::string_view summed) {
  return (Crc32(summed) & 0xFFFF) == block.Number(0, 2);
}

// Some of the old blocks that tell of owners have their content in it, too.
bool HoldsWithContent(const ArchiveInput& input, const Rar4Block& block) {
  if (block.TypeCode() != Rar4Block::kOldSub || block.content_size > kMostOldContent) return false;
  const std::size_t header = block.bytes.size();
  std::string bytes = block.bytes;
  bytes.resize(header + static_cast<std::size_t>(block.content_size));
  std::size_t got = 0;
  return input.ReadAt(block.content_position, bytes.data() + header, bytes.size() - header, &got).ok() &&
         header + got == bytes.size() && IsChecksum(block, std::string_view(bytes).substr(2));
}

// Writers were not of one mind about what it is over. Whatever it is over has to fit: a block that is passed over
// because of a damaged type may be a file.
bool ChecksumHolds(const ArchiveInput& input, const Rar4Block& block) {
  const std::string_view header(block.bytes);
  const std::size_t size = SummedSize(block);
  return (size <= header.size() && IsChecksum(block, header.substr(2, size - 2))) ||
         IsChecksum(block, header.substr(2)) || HoldsWithContent(input, block);
}

std::size_t LeastSize(const Rar4Block& block) {
  if (block.IsFile()) return block.NameEnd();
  return block.TypeCode() == Rar4Block::kMain ? Rar4Block::kMainSize : Rar4Block::kSize;
}

}  // namespace

bool ReadRar4Block(const ArchiveInput& input, HeaderBytes* header, std::uint64_t position, std::uint64_t end,
                   Rar4Block* block, Reason* problem) {
  *problem = why::kCutOffInHeader;
  if (!header->Begin(position) || !header->Read(Rar4Block::kSize)) return false;
  const auto size = static_cast<std::size_t>(LittleEndian(header->Bytes(), 5, 2));
  if (size < Rar4Block::kSize || !header->Read(size)) return false;
  block->bytes = header->Bytes().substr(0, size);
  block->content_position = header->EndOf(size);
  block->content_size = 0;
  const std::uint8_t type = block->TypeCode();
  if (type < Rar4Block::kMain || type > Rar4Block::kEnd || size < LeastSize(*block)) return false;
  if (block->IsFile() || block->Has(0x8000)) block->content_size = block->Number(7, 4);
  if (block->IsFile() && block->Has(0x100)) block->content_size |= block->Number(32, 4) << 32;
  if (!ChecksumHolds(input, *block)) return false;
  *problem = why::kCutOff;
  return block->content_size <= end - block->content_position;
}

}  // namespace quendle::modules
