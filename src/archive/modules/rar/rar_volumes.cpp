#include "archive/modules/rar/rar_volumes.h"

#include <string>
#include <string_view>
#include <utility>

#include "archive/modules/common/signature_scan.h"
#include "archive/modules/common/volumes.h"
#include "archive/modules/rar/rar_headers.h"

namespace quendle::modules {
namespace {

using namespace std::string_view_literals;

// The oldest signature is short. Behind a program it counts only where that says so itself.
bool FollowsOldProgram(const ArchiveInput& input) {
  std::string mark(4, '\0');
  std::size_t got = 0;
  return input.ReadAt(28, mark.data(), mark.size(), &got).ok() && mark == "RSFX";
}

std::optional<std::uint64_t> FindBeginning(const ArchiveInput& whole) {
  // Two bytes of the signature's end tell the later versions apart.
  const SignatureRule rule = {.signatures = {"Rar!\x1A\x07\x00"sv, "Rar!\x1A\x07\x01\x00"sv, "RE~^"sv},
                              .behind_anything = true};
  return FindSignature(whole, rule, [&whole](std::uint64_t candidate) {
    if (RarVersionAt(whole, candidate) == RarVersion::kRar13 && candidate > 0 && !FollowsOldProgram(whole))
      return false;
    return (candidate == 0 && RarVersionAt(whole, 0) != RarVersion::kRar13) || BeginsRar(whole, candidate);
  });
}

}  // namespace

std::optional<ArchiveInput> FindRar(std::shared_ptr<const platform::InputFile> file, Reason* reason) {
  const ArchiveInput whole(file, 0);
  const auto position = FindBeginning(whole);
  if (!position) return std::nullopt;
  const ArchiveInput own = whole.From(*position);
  const RarArchive headers = ReadRarVolume(own, 0, own.Size(), nullptr);
  // What is neither at the beginning nor behind a program may be a part of something else: a disk, a document.
  if (*position > 0 && headers.end != own.Size() && !BeginsWithProgram(whole)) return std::nullopt;
  // Whether it is one of several volumes may be encrypted, too: then their names have to do.
  const bool hides_volumes = headers.is_encrypted && headers.version == RarVersion::kRar5;
  if (!headers.is_volume && !hides_volumes) return own;
  VolumeSet set = FindVolumes(std::move(file), *position > 0);
  if (set.is_first && headers.is_first) return ArchiveInput(std::move(set.files)).From(*position);
  std::unique_ptr<platform::InputFile> first;
  if (!set.is_first && platform::InputFile::Open(set.first_path, &first).ok())
    return FindRar(std::move(first), reason);
  *reason = set.is_first ? why::kNotFirstVolume : why::kBeginsIn(set.first_path);
  return std::nullopt;
}

Reason MissingVolume(const ArchiveInput& input) {
  std::unique_ptr<platform::InputFile> opened;
  if (platform::InputFile::Open(input.Path(), &opened).ok()) {
    const std::shared_ptr<const platform::InputFile> first = std::move(opened);
    const bool is_program = RarVersionAt(ArchiveInput(first, 0), 0) == RarVersion::kNone;
    const VolumeSet set = FindVolumes(first, is_program);
    if (!set.missing_path.empty()) return why::kVolumeMissing(set.missing_path);
  }
  return why::kVolumeBehindMissing(input.Paths().back());
}

}  // namespace quendle::modules
