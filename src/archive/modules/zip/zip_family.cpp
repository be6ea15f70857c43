#include "archive/modules/zip/zip_family.h"

#include <libdeflate.h>

#include <algorithm>
#include <memory>
#include <string_view>
#include <utility>

#include "archive/modules/common/holding_archive.h"
#include "archive/modules/common/libarchive_reader.h"
#include "archive/modules/common/sevenzip_library.h"
#include "archive/modules/common/signature_scan.h"
#include "archive/modules/common/volumes.h"
#include "archive/modules/zip/zip_directory.h"
#include "archive/modules/zip/zip_end.h"
#include "archive/modules/zip/zip_reader.h"
#include "archive/modules/zip/zip_sevenzip.h"

namespace quendle::modules {
namespace {

Reason MissingVolume(const VolumeSet& set, const ZipEnd& end) {
  if (!set.missing_path.empty()) return why::kVolumeMissing(set.missing_path);
  return why::kOnlySomeVolumes(set.files.size(), end.volumes);
}

// The archive in all volumes that there are of the set.
std::optional<ArchiveInput> FindInSet(std::shared_ptr<const platform::InputFile> file, Reason* reason) {
  const ArchiveInput own(file, 0);
  VolumeSet set = FindVolumes(std::move(file));
  const ArchiveInput input(set.files);
  ZipEnd end;
  const bool is_found = FindZipEnd(input, &end).ok() && !end.is_misplaced;
  const bool is_zip = BeginsLikeZip(input) || BeginsWithProgram(input);
  if (!set.is_first) {
    if (is_found && is_zip) *reason = why::kBeginsIn(set.first_path);
  } else if (end.volumes > set.files.size()) {
    *reason = MissingVolume(set, end);
  } else if (is_found && is_zip && set.files.size() > 1) {
    if (end.shift <= 0) return input;
    *reason = why::kVolumesBehindProgram;
  } else if (BeginsLikeZip(own)) {
    if (set.files.size() == 1 || set.missing_path.empty())
      return input;  // its entries may do without a directory
    *reason = MissingVolume(set, end);
  }
  return std::nullopt;
}

// Is the archive at `begin` the content of an entry of another one, whose header stands in front of it? Of that one
// the end is missing then, and it is not the one that is meant.
bool IsStored(const ArchiveInput& input, std::uint64_t begin) {
  constexpr std::uint64_t kLargestHeader = kLocalHeaderSize + std::uint64_t{2} * 0xFFFF;
  ZipBytes bytes(input, 0);
  const std::uint64_t reach = std::min(begin, kLargestHeader);
  const std::string_view front = bytes.At(begin - reach, static_cast<std::size_t>(reach));
  for (std::size_t place = front.find("PK\3\4"); place != front.npos;
       place = front.find("PK\3\4", place + 1)) {
    if (LocalHeaderSize(front.substr(place)) == front.size() - place) return true;
  }
  return false;
}

// Does it begin as archives of other kinds do, which may hold this one?
bool BeginsLikeOtherArchive(const ArchiveInput& input) {
  static constexpr std::pair<std::size_t, std::string_view> kMarks[] = {
      {0, "Rar!\x1A\7"}, {0, "7z\xBC\xAF\x27\x1C"}, {0, "MSCF"}, {2, "-lh"}, {2, "-lz"}, {257, "ustar"}};
  ZipBytes bytes(input, 512);
  return std::any_of(std::begin(kMarks), std::end(kMarks), [&bytes](const auto& mark) {
    return bytes.At(mark.first, mark.second.size()) == mark.second;
  });
}

// The archive behind bytes that are none. Programs often have one behind them; in any other file it has to agree in
// everything with its local headers, so that no other document passes for an archive.
bool IsBehind(const ArchiveInput& own, const ArchiveInput& input) {
  if (IsStored(own, own.Size() - input.Size())) return false;
  if (BeginsWithProgram(own)) return !LiesInOtherArchive(own, own.Size() - input.Size());
  ZipDirectory directory;
  return !BeginsLikeOtherArchive(own) && ReadZipDirectory(input, &directory).ok() &&
         directory.problem.empty() && !directory.entries.empty() && LocalHeadersAgree(input, directory);
}

std::optional<ArchiveInput> FindZip(std::shared_ptr<const platform::InputFile> file, Reason* reason) {
  const ArchiveInput own(file, 0);
  ZipEnd end;
  // A file that is whole by itself has no other volumes, whatever the files beside it are called.
  if (FindZipEnd(own, &end).ok() && !end.is_misplaced) {
    const ArchiveInput input = own.From(end.shift > 0 ? static_cast<std::uint64_t>(end.shift) : 0);
    if (BeginsLikeZip(own) || IsBehind(own, input)) return input;
  }
  return FindInSet(std::move(file), reason);
}

std::vector<Engine> ZipEngines(const ArchiveInput&) {
  return {{"libarchive", &OpenZip}, {"7-Zip", &OpenZipBySevenZip}};
}

// The directory goes to the first reader. It is not kept beyond that, since it takes more memory than the list.
platform::Result CheckZip(const ArchiveInput& input, std::vector<Engine>* engines) {
  const auto known = std::make_shared<std::optional<ZipDirectory>>(std::in_place);
  platform::Result result = ReadZipDirectory(input, &known->value());
  if (!result.ok()) return result;
  engines->front().open = [known](const ArchiveInput& archive, const ReaderOptions& options, Reason* reason) {
    auto directory = std::exchange(*known, std::nullopt);
    return directory ? OpenZipBy(*std::move(directory), archive, options) : OpenZip(archive, options, reason);
  };
  return result;
}

std::string ZipLibraries() {
  return LibarchiveVersion().append(", libdeflate " LIBDEFLATE_VERSION_STRING).append(AndSevenZipVersion());
}

}  // namespace

const Family kZipFamily = {"ZIP",         kZipDialect,         &FindZip, &ZipEngines, &CheckZip,
                           &ZipLibraries, PasswordForm::kBytes};

}  // namespace quendle::modules
