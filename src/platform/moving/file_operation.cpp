#include "platform/moving/file_operation.h"

#include "platform/entries/path_names.h"
#include "platform/entries/renaming.h"
#include "platform/moving/place_entry.h"
#include "platform/moving/remove_tree.h"
#include "platform/moving/transfer.h"
#include "platform/moving/trash.h"

namespace quendle::platform {
namespace {

// Roots, "." and ".." are places and streams parts, not entries that could be moved or removed.
Result CheckNamesEntry(const std::string& path) {
  const std::string name = NameOf(path);
  const bool is_stream = kHostNames == NameRules::kWindows && name.find(':') != std::string::npos;
  if (!name.empty() && name != "." && name != ".." && !is_stream) return Success();
  return Failure(Code::kRefused, path, why::kBadEntryPath);
}

Result Place(Transfer& transfer, const std::string& source, const std::string& destination,
             bool perhaps_into) {
  Result result = CheckNamesEntry(destination);
  // By far the most common case, settled by a single call.
  if (result.ok() && transfer.moving && RenameWithoutReplacing(source, destination) == 0) return Success();
  if (perhaps_into && LeadsToFolder(destination))
    return Place(transfer, source, PathBelow(destination, NameOf(source)), false);
  if (result.ok()) result = PlaceEntry(transfer, source, destination);
  return result.ok() ? LeftoverResult(transfer.leftovers, destination) : result;
}

Result Run(Transfer& transfer, const std::string& source, const std::string& destination) {
  Result result = CheckNamesEntry(source);
  if (!result.ok()) return result;
  if (!transfer.meter.StartEntry(source)) return Cancelled(source);
  return Place(transfer, source, destination, transfer.options.into_folder);
}

}  // namespace

Result MoveEntry(const std::string& source, const std::string& destination,
                 const FileOperationOptions& options, FileOperationObserver* observer) {
  Transfer transfer(true, options, observer);
  return Run(transfer, WithoutTrailingSlashes(source), WithoutTrailingSlashes(destination));
}

Result CopyEntry(const std::string& source, const std::string& destination,
                 const FileOperationOptions& options, FileOperationObserver* observer) {
  Transfer transfer(false, options, observer);
  return Run(transfer, WithoutTrailingSlashes(source), WithoutTrailingSlashes(destination));
}

Result DeleteEntry(const std::string& path, const FileOperationOptions& options,
                   FileOperationObserver* observer) {
  const std::string entry = WithoutTrailingSlashes(path);
  Result named = CheckNamesEntry(entry);
  if (!named.ok()) return named;
  Transfer transfer(true, options, observer);
  if (!options.allow_undo) return RemoveTree(transfer, entry);
  if (!transfer.meter.StartEntry(entry)) return Cancelled(entry);
  TrashedEntry trashed;
  return TrashEntry(entry, &trashed);
}

}  // namespace quendle::platform
