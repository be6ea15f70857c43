#include "archive/modules/lzh/lzh_family.h"

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "archive/modules/common/holding_archive.h"
#include "archive/modules/common/library_versions.h"
#include "archive/modules/common/signature_scan.h"
#include "archive/modules/lzh/lzh_headers.h"
#include "archive/modules/lzh/lzh_reader.h"

namespace quendle::modules {
namespace {

// Looks at places in a program where a first header may stand. Most of them are none, and there may be hundreds of
// thousands: the file is read in blocks, of each place 4 KiB at most.
class ProgramHeaders {
 public:
  explicit ProgramHeaders(const ArchiveInput& input) : input_(input) {}

  // Places ascend. The content has to be there, too.
  bool IsAt(std::uint64_t position) {
    if (block_.empty() || position + kMostBytes > start_ + block_.size()) ReadBlock(position);
    if (position < start_ || position - start_ >= block_.size()) return false;
    const auto bytes =
        std::string_view(block_).substr(static_cast<std::size_t>(position - start_), kMostBytes);
    const auto header = ParseLzhHeader(bytes);
    return header && header->packed_size <= input_.Size() - position - header->content_position;
  }

 private:
  static constexpr std::size_t kMostBytes = 4U << 10;
  static constexpr std::uint64_t kBlock = 256U << 10;

  void ReadBlock(std::uint64_t position) {
    start_ = position;
    block_.resize(static_cast<std::size_t>(std::min(kBlock, input_.Size() - position)));
    std::size_t got = 0;
    if (!input_.ReadAt(start_, block_.data(), block_.size(), &got).ok()) got = 0;
    block_.resize(got);
  }

  const ArchiveInput& input_;
  std::uint64_t start_ = 0;
  std::string block_;
};

std::optional<ArchiveInput> FindLzh(std::shared_ptr<const platform::InputFile> file, Reason*) {
  const ArchiveInput whole(std::move(file), 0);
  ProgramHeaders headers(whole);
  // The method stands behind two bytes of the header. Programs have such words in them too, without a header.
  const auto position = FindSignature(whole, {{"-lh", "-lz", "-pm"}, 2}, [&](std::uint64_t candidate) {
    return candidate == 0 ? ReadLzhHeader(whole, 0).has_value() : headers.IsAt(candidate);
  });
  if (!position || LiesInOtherArchive(whole, *position)) return std::nullopt;
  return whole.From(*position);
}

std::vector<Engine> LzhEngines(const ArchiveInput&) {
  return {{"lzh", &OpenLzh}};
}

std::string LzhLibraries() {
  return kLhasaVersion;
}

}  // namespace

const Family kLzhFamily = {"LZH", kLzhDialect, &FindLzh, &LzhEngines, nullptr, &LzhLibraries};

}  // namespace quendle::modules
