// Unpacking whole contents of ZIP entries in memory, for the two methods that nearly all have.
#pragma once

#include <libdeflate.h>

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "archive/modules/common/content_pool.h"
#include "archive/modules/zip/zip_entry.h"

namespace quendle::modules {

class ZipUnpacker final : public ContentPool::Worker {
 public:
  // Both outlive this object.
  ZipUnpacker(const ArchiveInput& input, const std::vector<ZipEntry>& entries);

  // Is it one for here: stored or deflated, in clear, of a size that memory is for and that its packed bytes can make?
  static bool Takes(const ZipEntry& entry);

  std::optional<ContentBuffer> Unpack(std::size_t entry) override;

 private:
  struct Free {
    void operator()(libdeflate_decompressor* decompressor) const {
      libdeflate_free_decompressor(decompressor);
    }
  };

  std::optional<std::string_view> ReadPacked(const ZipEntry& zip);
  bool Decompress(std::string_view packed, ContentBuffer* content);

  const ArchiveInput& input_;
  const std::vector<ZipEntry>& entries_;
  std::unique_ptr<libdeflate_decompressor, Free> decompressor_;
  std::vector<char> bytes_;  // of a header and what is packed behind it
};

}  // namespace quendle::modules
