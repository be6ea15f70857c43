#include "platform/moving/merge.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "platform/entries/open_folder.h"
#include "platform/entries/paths.h"
#include "platform/moving/place_entry.h"
#include "platform/moving/source_tree.h"

namespace quendle::platform {
namespace {

Result ListNames(const std::string& path, std::vector<std::string>* names) {
  OpenFolder folder;
  Result result = OpenFolder::OpenItself(path, path, OpenFolder::Use::kList, &folder);
  return result.ok() ? folder.List(names) : result;
}

// A failure of one entry that says nothing about the next.
bool MayGoOn(const Result& result) {
  return result.ok() || result.code == Code::kExists || result.code == Code::kIsFolder ||
         result.code == Code::kNotFolder || result.code == Code::kRefused;
}

void CountLeftover(Leftovers* leftovers, Result result) {
  if (result.code == Code::kExists) {
    if (leftovers->existing++ == 0) leftovers->first_existing = std::move(result);
  } else if (leftovers->others++ == 0) {
    leftovers->first_other = std::move(result);
  }
}

std::string NameBelow(const std::string& folder, const std::string& path) {
  const std::string begin = PathBelow(folder, "");
  return path.starts_with(begin) ? path.substr(begin.size()) : path;
}

Result RemoveEmptied(const std::string& folder, bool may_hold_leftovers) {
  Result result = RemoveEmptyFolder(folder);
  if (result.code != Code::kExists) return result;
  if (may_hold_leftovers) return Success();
  return Failure(Code::kFailed, folder, why::kNewEntriesLeft);
}

}  // namespace

Result MergeFolders(Transfer& transfer, const std::string& source, const EntryStatus& status,
                    const std::string& destination, const EntryStatus& existing) {
  if (!transfer.meter.is_total_known() && (!transfer.moving || status.id.volume != existing.id.volume)) {
    SourceTree tree;
    Result result = tree.Scan(transfer, source, status);
    if (!result.ok()) return result;
    transfer.meter.Expect(tree.bytes());
  }
  if (transfer.moving) {
    Result result = CheckRemovable(source, status);
    if (!result.ok()) return result;
  }
  std::vector<std::string> names;
  Result listed = ListNames(source, &names);
  if (!listed.ok()) return listed;

  const unsigned left_before = transfer.leftovers.count();
  for (const std::string& name : names) {
    const std::string from = PathBelow(source, name);
    if (!transfer.meter.StartEntry(from)) return Cancelled(from);
    Result result = PlaceEntry(transfer, from, PathBelow(destination, name));
    if (!MayGoOn(result)) return result;
    if (!result.ok()) CountLeftover(&transfer.leftovers, std::move(result));
  }
  return transfer.moving ? RemoveEmptied(source, transfer.leftovers.count() > left_before) : Success();
}

Result LeftoverResult(const Leftovers& leftovers, const std::string& destination) {
  if (leftovers.count() == 0) return Success();
  Reason existing;
  if (leftovers.existing > 0) {
    const std::string first = NameBelow(destination, leftovers.first_existing.path);
    existing = leftovers.existing == 1 ? why::kExistsAndLeft(first)
                                       : why::kExistAndLeft(first, leftovers.existing - 1);
  }
  if (leftovers.others == 0) return Failure(Code::kExists, destination, existing);
  const Result& other = leftovers.first_other;
  const auto left = leftovers.others == 1 ? why::kEntryLeft : why::kEntriesLeft;
  const Reason others = left(leftovers.others, why::kAbout(other.reason, other.path));
  return Failure(other.code, destination, existing.empty() ? others : why::kAnd(existing, others));
}

bool FoldersCollide(const std::string& source, const std::string& destination) {
  EntryStatus from;
  EntryStatus to;
  if (!ReadStatus(destination, &to).ok()) return false;
  if (!to.is_folder() || !ReadStatus(source, &from).ok() || !from.is_folder()) return true;
  OpenFolder folder;
  std::vector<std::string> names;
  if (!OpenFolder::OpenItself(source, source, OpenFolder::Use::kList, &folder).ok() ||
      !folder.List(&names).ok())
    return false;
  return std::any_of(names.begin(), names.end(), [&](const std::string& name) {
    return FoldersCollide(PathBelow(source, name), PathBelow(destination, name));
  });
}

}  // namespace quendle::platform
