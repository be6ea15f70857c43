#include "platform/moving/place_entry.h"
#include "platform/process/system_failure.h"

#include <utility>

#include "platform/entries/path_names.h"
#include "platform/entries/renaming.h"
#include "platform/moving/bring_entry.h"
#include "platform/moving/merge.h"

namespace quendle::platform {
namespace {

FileSide SideOf(const std::string& path, const EntryStatus& status) {
  return {path, status.size, status.write_time.seconds};
}

bool LeadsTo(const std::string& path, const EntryStatus& entry) {
  EntryStatus target;
  return ReadTargetStatus(path, &target).ok() && IsSameEntry(target, entry);
}

// Is `path`, an existing folder, the folder `top` or somewhere below it?
bool IsAtOrBelow(const std::string& path, const EntryStatus& top) {
  std::string folder = RealPath(path);
  while (!folder.empty()) {
    if (LeadsTo(folder, top)) return true;
    std::string above = FolderOf(folder);
    if (above == folder) break;
    folder = std::move(above);
  }
  return false;
}

Result CheckFolder(const std::string& folder) {
  EntryStatus status;
  Result result = ReadTargetStatus(folder, &status);
  if (!result.ok() || status.is_folder()) return result;
  return Failure(Code::kNotFolder, folder, why::kNotFolder("Not a directory"));
}

// One entry under two names is either two hard links, or one name whose letters differ in case only on a file
// system that does not care: that one may be respelled.
Result PlaceOnItself(const Transfer& transfer, const std::string& source, const EntryStatus& status,
                     const std::string& destination) {
  EntryStatus folder;
  const bool is_respelling =
      transfer.moving && (status.is_folder() || status.links == 1) && NameOf(source) != NameOf(destination) &&
      ReadTargetStatus(FolderOf(source), &folder).ok() && LeadsTo(FolderOf(destination), folder);
  if (!is_respelling) return Failure(Code::kRefused, source, why::kSame);
  const int error = RenameReplacing(source, destination);
  return error == 0 ? Success() : SystemFailure(error, destination);
}

Result PlaceUnderFreeName(Transfer& transfer, const std::string& source, const EntryStatus& status,
                          const std::string& destination) {
  for (unsigned number = 2;; ++number) {
    const std::string path = NumberedPath(destination, number, status.is_folder());
    EntryStatus taken;
    Result result = ReadStatus(path, &taken);
    if (result.ok()) continue;
    if (result.code != Code::kNotFound) return result;
    result = BringEntry(transfer, source, status, path, nullptr);
    if (result.code != Code::kExists) return result;
  }
}

Result PlaceOnFile(Transfer& transfer, const std::string& source, const EntryStatus& status,
                   const std::string& destination, const EntryStatus& existing) {
  using Answer = FileOperationObserver::Answer;
  switch (transfer.observer->OnOverwrite(SideOf(destination, existing), SideOf(source, status))) {
    case Answer::kYes:
      return BringEntry(transfer, source, status, destination, &existing);
    case Answer::kNo:
      return Failure(Code::kExists, destination, why::kFileExistsAlready);
    case Answer::kCancel:
      break;
  }
  return Cancelled(destination);
}

}  // namespace

bool LeadsToFolder(const std::string& path) {
  EntryStatus target;
  return ReadTargetStatus(path, &target).ok() && target.is_folder();
}

Result PlaceEntry(Transfer& transfer, const std::string& source, const std::string& destination) {
  EntryStatus incoming;
  Result result = ReadStatus(source, &incoming);
  const std::string folder = FolderOf(destination);
  if (result.ok()) result = CheckFolder(folder);
  if (!result.ok()) return result;
  if (incoming.is_folder() && IsAtOrBelow(folder, incoming)) {
    return Failure(Code::kRefused, source, why::kIntoItself);
  }

  EntryStatus existing;
  result = ReadStatus(destination, &existing);
  if (result.code == Code::kNotFound) return BringEntry(transfer, source, incoming, destination, nullptr);
  if (!result.ok()) return result;
  if (IsSameEntry(incoming, existing)) return PlaceOnItself(transfer, source, incoming, destination);
  if (transfer.options.fail_if_taken) return AppearedMeanwhile(destination);
  if (transfer.options.rename_on_collision)
    return PlaceUnderFreeName(transfer, source, incoming, destination);
  if (incoming.is_folder()) {
    if (existing.is_folder()) return MergeFolders(transfer, source, incoming, destination, existing);
    return Failure(Code::kNotFolder, destination, why::kFileWhereFolderGoes);
  }
  if (LeadsToFolder(destination)) {
    return Failure(Code::kIsFolder, destination, why::kFolderWhereFileGoes);
  }
  // The link would be all that is left of it.
  if (LeadsTo(source, existing)) return Failure(Code::kRefused, source, why::kLinkToDestination);
  return PlaceOnFile(transfer, source, incoming, destination, existing);
}

}  // namespace quendle::platform
