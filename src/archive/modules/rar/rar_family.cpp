#include "archive/modules/rar/rar_family.h"

#include <memory>
#include <utility>

#include "archive/modules/common/libarchive_reader.h"
#include "archive/modules/common/signature_scan.h"
#include "archive/modules/common/unarr_reader.h"
#include "archive/modules/common/volumes.h"
#include "archive/modules/rar/rar5_reader.h"
#include "archive/modules/rar/rar_headers.h"
#include "archive/modules/rar/rar_reader.h"

namespace quendle::modules {
namespace {

using namespace std::string_view_literals;

// The files of the set from the first to the one that says that it is the last: others of such names may be
// left from an older archive.
std::optional<ArchiveInput> JoinVolumes(VolumeSet set, std::uint64_t first_offset, Reason* reason) {
  for (std::size_t i = 0; i < set.files.size(); ++i) {
    const ArchiveInput volume(set.files[i], i == 0 ? first_offset : 0);
    const RarArchive headers = ReadRarVolume(volume, 0, volume.Size());
    if (headers.version == RarVersion::kNone || (!headers.is_volume && headers.problem.empty())) {
      *reason = why::kNoVolumeOfThis(set.files[i]->Path());
      return std::nullopt;
    }
    if (headers.has_next || !headers.problem.empty()) continue;
    set.files.resize(i + 1);
    return ArchiveInput(std::move(set.files)).From(first_offset);
  }
  const ArchiveInput last(set.files.back(), set.files.size() == 1 ? first_offset : 0);
  if (ReadRarVolume(last, 0, last.Size()).has_next) {
    *reason = set.missing_path.empty() ? why::kVolumeBehindMissing(last.Path())
                                       : why::kVolumeMissing(set.missing_path);
    return std::nullopt;
  }
  return ArchiveInput(std::move(set.files)).From(first_offset);
}

std::optional<ArchiveInput> FindRar(std::shared_ptr<const platform::InputFile> file, Reason* reason) {
  const ArchiveInput whole(file, 0);
  // Two bytes of the signature's end tell the versions apart.
  const SignatureRule rule = {.signatures = {"Rar!\x1A\x07\x00"sv, "Rar!\x1A\x07\x01\x00"sv},
                              .behind_anything = true};
  const auto position = FindSignature(
      whole, rule, [&](std::uint64_t candidate) { return candidate == 0 || BeginsRar(whole, candidate); });
  if (!position) return std::nullopt;
  const ArchiveInput own = whole.From(*position);
  const RarArchive headers = ReadRarVolume(own, 0, own.Size());
  // What is neither at the beginning nor behind a program may be a part of something else: a disk, a document.
  if (*position > 0 && headers.end != own.Size() && !BeginsWithProgram(whole)) return std::nullopt;
  if (!headers.is_volume) return own;
  VolumeSet set = FindVolumes(std::move(file));
  if (!set.is_first || !headers.is_first) {
    *reason = set.is_first ? why::kNotFirstVolume : why::kBeginsIn(set.first_path);
    return std::nullopt;
  }
  return JoinVolumes(std::move(set), *position, reason);
}

std::vector<Engine> RarEngines(const ArchiveInput& input) {
  if (RarVersionAt(input, 0) == RarVersion::kRar5) return {{"libarchive", &OpenRar5}};
  if (input.VolumeCount() > 1 || !HasUnarr()) return {{"libarchive", &OpenRarByLibarchive}};
  return {{"unarr", &OpenRarByUnarr}, {"libarchive", &OpenRarByLibarchive}};
}

std::string RarLibraries() {
  return LibarchiveVersion() + AndUnarrVersion();
}

}  // namespace

const Family kRarFamily = {"RAR", kRarDialect, &FindRar, &RarEngines, nullptr, &RarLibraries};

}  // namespace quendle::modules
