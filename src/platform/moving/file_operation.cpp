#include "platform/moving/file_operation.h"

#include <functional>

#include "platform/entries/path_names.h"
#include "platform/entries/renaming.h"
#include "platform/moving/own_thread.h"
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

Result Delete(Transfer& transfer, const std::string& entry) {
  if (!transfer.options.allow_undo) return RemoveTree(transfer, entry);
  TrashedEntry trashed;
  return TrashEntry(entry, &trashed);
}

// Does the work, with what it shares, for an entry that it may begin with.
Result Run(bool is_move, const std::string& entry, const FileOperationOptions& options,
           FileOperationObserver* observer, const std::function<Result(Transfer&)>& work) {
  Result named = CheckNamesEntry(entry);
  if (!named.ok()) return named;
  const auto begin = [&](FileOperationObserver* told) {
    Transfer transfer(is_move, options, told);
    return transfer.meter.StartEntry(entry) ? work(transfer) : Cancelled(entry);
  };
  return observer->MustStayResponsive() ? DoOnOwnThread(observer, begin) : begin(observer);
}

Result Run(bool is_move, const std::string& source, const std::string& destination,
           const FileOperationOptions& options, FileOperationObserver* observer) {
  const std::string from = WithoutTrailingSlashes(source);
  const std::string to = WithoutTrailingSlashes(destination);
  return Run(is_move, from, options, observer,
             [&](Transfer& transfer) { return Place(transfer, from, to, options.into_folder); });
}

}  // namespace

Result MoveEntry(const std::string& source, const std::string& destination,
                 const FileOperationOptions& options, FileOperationObserver* observer) {
  return Run(true, source, destination, options, observer);
}

Result CopyEntry(const std::string& source, const std::string& destination,
                 const FileOperationOptions& options, FileOperationObserver* observer) {
  return Run(false, source, destination, options, observer);
}

Result DeleteEntry(const std::string& path, const FileOperationOptions& options,
                   FileOperationObserver* observer) {
  const std::string entry = WithoutTrailingSlashes(path);
  return Run(true, entry, options, observer, [&](Transfer& transfer) { return Delete(transfer, entry); });
}

}  // namespace quendle::platform
