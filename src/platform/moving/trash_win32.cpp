#include "platform/entries/entry_status.h"
#include "platform/entries/path_names.h"
#include "platform/moving/trash.h"
#include "platform/text/wide_win32.h"

// It needs the system's header before it.
#include <shellapi.h>

namespace quendle::platform {
namespace {

Result NoTrash(const std::string& path, const std::string& why) {
  return Failure(Code::kFailed, path, "there is no trash to move this to: " + why);
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
  if (!HasRecycleBin(shell_path)) return NoTrash(path, "this disk has none");
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
  if (deletion.fAnyOperationsAborted != 0) return Failure(Code::kCancelled, path, "cancelled");
  return Failure(Code::kFailed, path,
                 "the recycle bin does not take it (error " + std::to_string(error) + ")");
}

Result RestoreTrashed(const TrashedEntry& trashed) {
  return Failure(Code::kFailed, trashed.original, "only the user gets things out of the recycle bin");
}

}  // namespace quendle::platform
