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
  const auto packed = ReadPacked(zip);
  if (!decompressor_ || !packed) return std::nullopt;
  ContentBuffer content(static_cast<std::size_t>(zip.size));
  if (zip.packed_method == kStore) {
    packed->copy(content.Data(), packed->size());
  } else if (!Decompress(*packed, &content)) {
    return std::nullopt;
  }
  const std::string_view bytes = content.View();
  if (libdeflate_crc32(0, bytes.data(), bytes.size()) != zip.crc) return std::nullopt;
  return content;
}

// With the header in front of it, of which only its end says how large it is: mostly at once. Nothing when it is not all there,
// or the header is of something else.
std::optional<std::string_view> ZipUnpacker::ReadPacked(const ZipEntry& zip) {
  constexpr std::size_t kUsualExtra = 64;
  const auto packed_size = static_cast<std::size_t>(zip.packed_size);
  std::size_t header_size = kLocalHeaderSize + zip.name.size() + kUsualExtra;
  for (bool is_again = false;; is_again = true) {
    const std::size_t size = header_size + packed_size;
    if (bytes_.size() < size) bytes_.resize(size);
    std::size_t got = 0;
    if (!input_.ReadAt(zip.position, bytes_.data(), size, &got).ok()) return std::nullopt;
    const std::string_view all(bytes_.data(), got);
    if (WhyNotHeaderOf(zip, all) || !HasMethodOf(zip, all)) return std::nullopt;
    header_size = LocalHeaderSize(all);
    if (header_size <= got && packed_size <= got - header_size) return all.substr(header_size, packed_size);
    if (is_again) return std::nullopt;
  }
}

// All packed bytes have to be used, and to give as many as the header says.
bool ZipUnpacker::Decompress(std::string_view packed, ContentBuffer* content) {
  std::size_t used = 0;
  std::size_t made = 0;
  const std::size_t size = content->View().size();
  const libdeflate_result result = libdeflate_deflate_decompress_ex(
      decompressor_.get(), packed.data(), packed.size(), content->Data(), size, &used, &made);
  return result == LIBDEFLATE_SUCCESS && used == packed.size() && made == size;
}

}  // namespace quendle::modules
