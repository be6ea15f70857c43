#include "archive/modules/rar/rar5_block.h"

#include "archive/modules/common/checksum.h"
#include "archive/modules/common/little_endian.h"

namespace quendle::modules {

std::uint64_t Rar5Numbers::Next() {
  std::uint64_t value = 0;
  for (unsigned shift = 0; shift < 70 && at_ < bytes_.size(); shift += 7) {
    const auto byte = static_cast<unsigned char>(bytes_[at_++]);
    const auto bits = static_cast<std::uint64_t>(byte & 0x7F);
    if (shift == 63 && bits > 1) break;
    value |= bits << shift;
    if ((byte & 0x80) == 0) return value;
  }
  failed_ = true;
  return 0;
}

std::uint64_t Rar5Numbers::Fixed(std::size_t width) {
  const std::uint64_t value = LittleEndian(bytes_, at_, width);
  Bytes(width);
  return value;
}

std::string Rar5Numbers::Bytes(std::uint64_t count) {
  if (failed_ || count > bytes_.size() - at_) {
    failed_ = true;
    return "";
  }
  const auto size = static_cast<std::size_t>(count);
  at_ += size;
  return std::string(bytes_.substr(at_ - size, size));
}

bool ReadRar5Block(HeaderBytes* header, std::uint64_t position, std::uint64_t end, std::size_t most,
                   Rar5Block* block, Reason* problem) {
  constexpr std::size_t kCrcSize = 4;
  constexpr std::size_t kLeast = 7;  // a checksum and three numbers
  *problem = why::kCutOffInHeader;
  if (!header->Begin(position) || !header->Read(kLeast)) return false;
  Rar5Numbers sizes(header->Bytes().substr(kCrcSize, 3));
  const std::uint64_t size = sizes.Next();
  const std::size_t begin = kLeast - sizes.Rest().size();
  if (sizes.Failed() || size == 0 || size > most) return false;
  const auto whole = begin + static_cast<std::size_t>(size);
  if (!header->Read(whole)) return false;
  const std::string_view bytes = header->Bytes().substr(0, whole);
  if (Crc32(bytes.substr(kCrcSize)) != LittleEndian(bytes, 0, kCrcSize)) return false;
  Rar5Numbers fields(bytes.substr(begin));
  block->type = fields.Next();
  block->flags = fields.Next();
  const std::uint64_t extra_size = block->Has(1) ? fields.Next() : 0;  // at the end
  block->content_size = block->Has(2) ? fields.Next() : 0;
  block->content_position = header->EndOf(whole);
  if (fields.Failed() || extra_size > fields.Rest().size()) return false;
  block->own = fields.Bytes(fields.Rest().size() - extra_size);
  block->extra = fields.Rest();
  *problem = why::kCutOff;
  return block->content_position <= end && block->content_size <= end - block->content_position;
}

}  // namespace quendle::modules
