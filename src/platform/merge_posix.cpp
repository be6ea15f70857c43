#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

#include "platform/descriptor_posix.h"
#include "platform/entry_names_posix.h"
#include "platform/folder_listing_posix.h"
#include "platform/place_entry_posix.h"
#include "platform/source_tree_posix.h"

namespace quendle::platform {
namespace {

Result ListNames(const std::string& path, std::vector<std::string>* names) {
  const Descriptor folder(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  return folder.ok() ? ListFolder(folder.get(), path, names) : LastSystemFailure(path);
}

// A failure of one entry that says nothing about the next.
bool MayGoOn(const Result& result) {
  return result.ok() || result.code == Code::kExists || result.code == Code::kIsFolder ||
         result.code == Code::kNotFolder || result.code == Code::kRefused;
}

void CountLeftover(Leftovers* leftovers, Result result) {
  if (result.code == Code::kExists) {
    ++leftovers->existing;
  } else if (leftovers->others++ == 0) {
    leftovers->first_other = std::move(result);
  }
}

Result RemoveEmptied(const std::string& folder, bool may_hold_leftovers) {
  if (rmdir(folder.c_str()) == 0) return Success();
  if (errno != ENOTEMPTY && errno != EEXIST) return LastSystemFailure(folder);
  if (may_hold_leftovers) return Success();
  return Failure(Code::kFailed, folder, "entries that appeared meanwhile were left");
}

}  // namespace

Result MergeFolders(Transfer& transfer, const std::string& source, const struct stat& status,
                    const std::string& destination, const struct stat& existing) {
  if (!transfer.meter.is_total_known() && (!transfer.moving || status.st_dev != existing.st_dev)) {
    SourceTree tree;
    Result result = tree.Scan(transfer, source, status);
    if (!result.ok()) return result;
    transfer.meter.Expect(tree.bytes());
  }
  if (transfer.moving) {
    Result result = CheckRemovable(AT_FDCWD, FolderOf(source).c_str(), FolderOf(source), status);
    if (!result.ok()) return result;
  }
  std::vector<std::string> names;
  Result listed = ListNames(source, &names);
  if (!listed.ok()) return listed;

  const unsigned left_before = transfer.leftovers.count();
  for (const std::string& name : names) {
    const std::string from = source + "/" + name;
    if (!transfer.meter.StartEntry(from)) return Cancelled(from);
    Result result = PlaceEntry(transfer, from, destination + "/" + name);
    if (!MayGoOn(result)) return result;
    if (!result.ok()) CountLeftover(&transfer.leftovers, std::move(result));
  }
  return transfer.moving ? RemoveEmptied(source, transfer.leftovers.count() > left_before) : Success();
}

Result LeftoverResult(const Leftovers& leftovers, const std::string& destination) {
  if (leftovers.count() == 0) return Success();
  std::string reason;
  if (leftovers.existing > 0) {
    reason = leftovers.existing == 1
                 ? "1 file exists already and was left"
                 : std::to_string(leftovers.existing) + " files exist already and were left";
  }
  if (leftovers.others > 0) {
    reason += (reason.empty() ? "" : "; ") + std::to_string(leftovers.others) +
              (leftovers.others == 1 ? " entry was left: " : " entries were left: ") +
              leftovers.first_other.reason + ": " + leftovers.first_other.path;
  }
  return Failure(Code::kExists, destination, std::move(reason));
}

}  // namespace quendle::platform
