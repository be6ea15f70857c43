#include "archive/modules/sevenzip/sevenzip_family.h"

#include <memory>
#include <utility>

#include "archive/modules/common/libarchive_reader.h"
#include "archive/modules/common/sevenzip_library.h"
#include "archive/modules/common/signature_scan.h"
#include "archive/modules/common/volumes.h"
#include "archive/modules/sevenzip/sevenzip_headers.h"
#include "archive/modules/sevenzip/sevenzip_reader.h"

namespace quendle::modules {
namespace {

// Beyond what archives of millions of files take. The libraries take some five times as much memory.
constexpr std::uint64_t kLargestHeaders = 32U << 20;

// Is the input long enough for the end header, which the start header places?
bool IsWhole(const ArchiveInput& input) {
  const auto start = ReadSevenZipStart(input, 0);
  return start && start->end_offset <= input.Size() && start->end_size <= input.Size() - start->end_offset;
}

std::optional<ArchiveInput> FindSevenZip(std::shared_ptr<const platform::InputFile> file, Reason* reason) {
  const VolumeSet set = FindVolumes(std::move(file));
  const ArchiveInput all(set.files);
  const auto fits = [&](std::uint64_t position) { return ReadSevenZipStart(all, position).has_value(); };
  const auto position = FindSignature(all, {{kSevenZipSignature}}, fits);
  if (!position) {
    std::string begin(kSevenZipSignature.size(), '\0');
    std::size_t got = 0;
    if (all.ReadAt(0, begin.data(), begin.size(), &got).ok() && begin == kSevenZipSignature) {
      *reason = why::kStartHeaderDamaged;
    }
    return std::nullopt;
  }
  if (!set.is_first) {
    *reason = why::kBeginsIn(set.first_path);
    return std::nullopt;
  }
  ArchiveInput input = all.From(*position);
  if (IsWhole(input)) return input;
  *reason = set.missing_path.empty() ? why::kEndMissing : why::kVolumeMissing(set.missing_path);
  return std::nullopt;
}

std::unique_ptr<EntryReader> OpenByLibarchive(const ArchiveInput& input, const ReaderOptions& options,
                                              Reason* reason) {
  return OpenLibarchive(input, options, LibarchiveFormat::kSevenZip, {}, reason);
}

std::vector<Engine> SevenZipEngines(const ArchiveInput&) {
  return {{"7-Zip", &OpenSevenZip}, {"libarchive", &OpenByLibarchive}};
}

// A few kilobytes may say that they unpack to millions of entries.
platform::Result CheckSevenZip(const ArchiveInput& input, std::vector<Engine>*) {
  const auto list = FindSevenZipList(input);
  if (!list || list->unpacked_size <= kLargestHeaders) return platform::Success();
  return Failure(platform::Code::kRefused, input.Path(), why::kHeadersTooLarge(list->unpacked_size >> 20U));
}

std::string SevenZipLibraries() {
  return LibarchiveVersion() + AndSevenZipVersion();
}

}  // namespace

const Family kSevenZipFamily = {"7Z",           kSevenZipDialect,  &FindSevenZip, &SevenZipEngines,
                                &CheckSevenZip, &SevenZipLibraries};

}  // namespace quendle::modules
