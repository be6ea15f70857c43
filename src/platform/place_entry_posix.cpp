#include "platform/place_entry_posix.h"

#include <cerrno>
#include <cstdio>

#include "platform/bring_entry_posix.h"
#include "platform/entry_names_posix.h"

namespace quendle::platform {
namespace {

FileVersion VersionOf(const std::string& path, const struct stat& status) {
  return {path, static_cast<std::uint64_t>(status.st_size), status.st_mtim.tv_sec};
}

bool LeadsTo(const std::string& path, const struct stat& entry) {
  struct stat target;
  return stat(path.c_str(), &target) == 0 && IsSameEntry(target, entry);
}

bool LeadsToFolder(const std::string& path) {
  struct stat target;
  return stat(path.c_str(), &target) == 0 && S_ISDIR(target.st_mode);
}

Result CheckFolder(const std::string& folder) {
  struct stat status;
  if (stat(folder.c_str(), &status) != 0) return LastSystemFailure(folder);
  return S_ISDIR(status.st_mode) ? Success() : SystemFailure(ENOTDIR, folder);
}

// One entry under two names is either two hard links, or one name whose letters differ in case only on a file
// system that does not care: that one may be respelled.
Result PlaceOnItself(const Transfer& transfer, const std::string& source, const struct stat& status,
                     const std::string& destination) {
  struct stat folder;
  const bool is_respelling = transfer.moving && (S_ISDIR(status.st_mode) || status.st_nlink == 1) &&
                             NameOf(source) != NameOf(destination) &&
                             stat(FolderOf(source).c_str(), &folder) == 0 &&
                             LeadsTo(FolderOf(destination), folder);
  if (!is_respelling) return Failure(Code::kRefused, source, "source and destination are the same");
  return rename(source.c_str(), destination.c_str()) == 0 ? Success() : LastSystemFailure(destination);
}

Result PlaceUnderFreeName(Transfer& transfer, const std::string& source, const struct stat& status,
                          const std::string& destination) {
  for (unsigned number = 2;; ++number) {
    const std::string path = NumberedPath(destination, number, S_ISDIR(status.st_mode));
    struct stat taken;
    if (lstat(path.c_str(), &taken) == 0) continue;
    if (errno != ENOENT) return LastSystemFailure(path);
    Result result = BringEntry(transfer, source, status, path, nullptr);
    if (result.code != Code::kExists) return result;
  }
}

Result PlaceOnFile(Transfer& transfer, const std::string& source, const struct stat& status,
                   const std::string& destination, const struct stat& existing) {
  using Answer = FileOperationObserver::Answer;
  switch (transfer.observer->OnOverwrite(VersionOf(destination, existing), VersionOf(source, status))) {
    case Answer::kYes:
      return BringEntry(transfer, source, status, destination, &existing);
    case Answer::kNo:
      return Failure(Code::kExists, destination, "a file of that name exists already");
    case Answer::kCancel:
      break;
  }
  return Cancelled(destination);
}

}  // namespace

Result PlaceEntry(Transfer& transfer, const std::string& source, const std::string& destination) {
  struct stat incoming;
  if (lstat(source.c_str(), &incoming) != 0) return LastSystemFailure(source);
  const bool is_folder = S_ISDIR(incoming.st_mode);
  const std::string folder = FolderOf(destination);
  Result result = CheckFolder(folder);
  if (!result.ok()) return result;
  if (is_folder && IsAtOrBelow(folder, incoming)) {
    return Failure(Code::kRefused, source, "a folder cannot go into itself");
  }

  struct stat existing;
  if (lstat(destination.c_str(), &existing) != 0) {
    if (errno != ENOENT) return LastSystemFailure(destination);
    return BringEntry(transfer, source, incoming, destination, nullptr);
  }
  if (IsSameEntry(incoming, existing)) return PlaceOnItself(transfer, source, incoming, destination);
  if (transfer.options.rename_on_collision)
    return PlaceUnderFreeName(transfer, source, incoming, destination);
  if (is_folder) {
    if (S_ISDIR(existing.st_mode)) return MergeFolders(transfer, source, incoming, destination, existing);
    return Failure(Code::kNotFolder, destination, "a file of that name is where the folder would go");
  }
  if (LeadsToFolder(destination)) {
    return Failure(Code::kIsFolder, destination, "a folder of that name is where the file would go");
  }
  // The link would be all that is left of it.
  if (LeadsTo(source, existing)) return Failure(Code::kRefused, source, "the link leads to the destination");
  return PlaceOnFile(transfer, source, incoming, destination, existing);
}

}  // namespace quendle::platform
