#include "archive/modules/zip/zip_unpacker.h"

#include <algorithm>

#include "archive/modules/zip/zip_directory.h"

namespace quendle::modules {
namespace {

constexpr std::uint16_t kStore = 0;
constexpr std::uint16_t kDeflate = 8;
// Deflate makes 258 bytes of two bits at most.
constexpr std::uint64_t kMostGrowth = 1032;

}  // namespace

ZipUnpacker::ZipUnpacker(const ArchiveInput& input, const std::vector<ZipEntry>& entries)
    : input_(input), entries_(entries), decompressor_(libdeflate_alloc_decompressor()) {}

bool ZipUnpacker::Takes(const ZipEntry& entry) {
  if (entry.IsEncrypted() || entry.size > ContentPool::kMostSize || entry.position == kNowhere) return false;
  if (entry.packed_method == kStore) return entry.size == entry.packed_size;
  return entry.packed_method == kDeflate && entry.size / kMostGrowth <= entry.packed_size &&
         entry.packed_size <= ContentPool::kMostSize;
}

std::optional<ContentBuffer> ZipUnpacker::Unpack(std::size_t entry) {
  const ZipEntry& zip = entries_[entry];
  std::uint64_t position = 0;
  if (!decompressor_ || !CheckLocalHeader(input_, zip, &position).ok()) return std::nullopt;
  const auto packed_size = static_cast<std::size_t>(zip.packed_size);
  ContentBuffer content(static_cast<std::size_t>(zip.size));
  char* packed = content.Data();
  if (zip.packed_method == kDeflate) {
    packed_.resize(std::max(packed_.size(), packed_size));
    packed = packed_.data();
  }
  std::size_t got = 0;
  if (!input_.ReadAt(position, packed, packed_size, &got).ok() || got < packed_size) return std::nullopt;
  if (zip.packed_method == kDeflate && !Decompress(zip, packed, &content)) return std::nullopt;
  const std::string_view bytes = content.View();
  if (libdeflate_crc32(0, bytes.data(), bytes.size()) != zip.crc) return std::nullopt;
  return content;
}

// All packed bytes have to be used, and to give as many as the header says.
bool ZipUnpacker::Decompress(const ZipEntry& entry, const char* packed, ContentBuffer* content) {
  std::size_t used = 0;
  std::size_t made = 0;
  const auto packed_size = static_cast<std::size_t>(entry.packed_size);
  const std::size_t size = content->View().size();
  const libdeflate_result result = libdeflate_deflate_decompress_ex(decompressor_.get(), packed, packed_size,
                                                                    content->Data(), size, &used, &made);
  return result == LIBDEFLATE_SUCCESS && used == packed_size && made == size;
}

}  // namespace quendle::modules
