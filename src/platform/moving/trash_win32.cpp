#include "platform/entries/entry_status.h"
#include "platform/entries/path_names.h"
#include "platform/moving/trash.h"
#include "platform/text/wide_win32.h"

// It needs the system's header before it.
#include <shellapi.h>

namespace quendle::platform {
namespace {

Result NoTrash(const std::string& path, const Reason& reason) {
  return Failure(Code::kFailed, path, why::kNoTrash(reason));
}

// Only local disks have a recycle bin; from others the system would remove for good.
bool HasRecycleBin(const std::wstring& path) {
  wchar_t root[MAX_PATH];
  return GetVolumePathNameW(path.c_str(), root, MAX_PATH) != 0 && GetDriveTypeW(root) == DRIVE_FIXED;
}

}  // namespace

Result TrashEntry(const std::string& path, TrashedEntry* trashed) {
  EntryStatus status;
  Result result = ReadStatus(path, &status);
  if (!result.ok()) return result;
  std::wstring shell_path;
  result = ToShellPath(path, &shell_path);
  if (!result.ok()) return NoTrash(path, result.reason);
  if (!HasRecycleBin(shell_path)) return NoTrash(path, why::kDiskHasNoTrash);
  shell_path += L'\0';  // it is a list
  SHFILEOPSTRUCTW deletion = {};
  deletion.wFunc = FO_DELETE;
  deletion.pFrom = shell_path.c_str();
  deletion.fFlags = FOF_ALLOWUNDO | FOF_NOCONFIRMATION | FOF_SILENT | FOF_NOERRORUI | FOF_WANTNUKEWARNING;
  const int error = SHFileOperationW(&deletion);
  EntryStatus left;
  if (!ReadStatus(path, &left).ok()) {
    trashed->original = path;
    return Success();
  }
  if (deletion.fAnyOperationsAborted != 0) return Failure(Code::kCancelled, path, why::kCancelled);
  return Failure(Code::kFailed, path, why::kTrashRefuses(error));
}

Result RestoreTrashed(const TrashedEntry& trashed) {
  return Failure(Code::kFailed, trashed.original, why::kOnlyUserRestores);
}

}  // namespace quendle::platform
