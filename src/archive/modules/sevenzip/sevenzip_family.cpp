#include "archive/modules/sevenzip/sevenzip_family.h"

#include <memory>
#include <utility>

#include "archive/modules/common/checksum.h"
#include "archive/modules/common/libarchive_reader.h"
#include "archive/modules/common/little_endian.h"
#include "archive/modules/common/signature_scan.h"
#include "archive/modules/common/volumes.h"

namespace quendle::modules {
namespace {

using namespace std::string_view_literals;

constexpr std::string_view kSignature = "7z\xBC\xAF\x27\x1C"sv;
constexpr std::size_t kStartHeaderSize = 32;

// The start header, if one that its checksum confirms is there.
std::optional<std::string> StartHeader(const ArchiveInput& input, std::uint64_t position) {
  std::string header(kStartHeaderSize, '\0');
  std::size_t got = 0;
  const platform::Result result = input.ReadAt(position, header.data(), header.size(), &got);
  if (!result.ok() || got < header.size() || !header.starts_with(kSignature)) return std::nullopt;
  if (LittleEndian(header, 8, 4) != Crc32(std::string_view(header).substr(12))) return std::nullopt;
  return header;
}

// Is the input long enough for the end header, which the start header places?
bool IsWhole(const ArchiveInput& input, std::string_view start_header) {
  const std::uint64_t offset = LittleEndian(start_header, 12, 8);
  const std::uint64_t size = LittleEndian(start_header, 20, 8);
  const std::uint64_t room = input.Size() - kStartHeaderSize;
  return offset <= room && size <= room - offset;
}

std::optional<ArchiveInput> FindSevenZip(std::shared_ptr<const platform::InputFile> file, Reason* reason) {
  const VolumeSet set = FindVolumes(std::move(file));
  const ArchiveInput all(set.files);
  const auto fits = [&](std::uint64_t position) { return StartHeader(all, position).has_value(); };
  const auto position = FindSignature(all, {{kSignature}}, fits);
  if (!position) {
    std::string begin(kSignature.size(), '\0');
    std::size_t got = 0;
    if (all.ReadAt(0, begin.data(), begin.size(), &got).ok() && begin == kSignature) {
      *reason = why::kStartHeaderDamaged;
    }
    return std::nullopt;
  }
  if (!set.is_first) {
    *reason = why::kBeginsIn(set.first_path);
    return std::nullopt;
  }
  ArchiveInput input = all.From(*position);
  if (IsWhole(input, *StartHeader(input, 0))) return input;
  *reason = set.missing_path.empty() ? why::kEndMissing : why::kVolumeMissing(set.missing_path);
  return std::nullopt;
}

std::unique_ptr<EntryReader> OpenByLibarchive(const ArchiveInput& input, const ReaderOptions& options,
                                              Reason* reason) {
  return OpenLibarchive(input, options, LibarchiveFormat::kSevenZip, {}, reason);
}

std::vector<Engine> SevenZipEngines(const ArchiveInput&) {
  return {{"libarchive", &OpenByLibarchive}};
}

}  // namespace

const Family kSevenZipFamily = {"7Z",    kSevenZipDialect,  &FindSevenZip, &SevenZipEngines,
                                nullptr, &LibarchiveVersion};

}  // namespace quendle::modules
