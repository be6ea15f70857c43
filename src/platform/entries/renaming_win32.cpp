#include "platform/entries/renaming.h"

#include "platform/entries/nt_file_win32.h"
#include "platform/entries/path_names.h"

namespace quendle::platform {
namespace {

int ErrorUnless(BOOL done) {
  return done != 0 ? 0 : static_cast<int>(GetLastError());
}

// The system replaces no file that is read-only.
int ReplaceReadOnly(const std::wstring& from, const std::wstring& to, DWORD attributes) {
  if (SetFileAttributesW(to.c_str(), attributes & ~DWORD{FILE_ATTRIBUTE_READONLY}) == 0)
    return ERROR_ACCESS_DENIED;
  const int error = ErrorUnless(MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING));
  if (error != 0) (void)SetFileAttributesW(to.c_str(), attributes);
  return error;
}

int Replace(const std::wstring& from, const std::wstring& to) {
  const int error = ErrorUnless(MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING));
  const DWORD attributes = error == ERROR_ACCESS_DENIED ? GetFileAttributesW(to.c_str()) : 0;
  const bool is_read_only =
      attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
  return is_read_only ? ReplaceReadOnly(from, to, attributes) : error;
}

}  // namespace

// The system takes it for done when both names are of one entry.
int RenameWithoutReplacing(const std::string& from, const std::string& to) {
  const std::wstring wide_to = SystemPath(to);
  if (GetFileAttributesW(wide_to.c_str()) != INVALID_FILE_ATTRIBUTES) return ERROR_ALREADY_EXISTS;
  return ErrorUnless(MoveFileExW(SystemPath(from).c_str(), wide_to.c_str(), 0));
}

// The first try is for an entry that only gets other letter case: a folder never replaces.
int RenameReplacing(const std::string& from, const std::string& to) {
  const std::wstring wide_from = SystemPath(from);
  const std::wstring wide_to = SystemPath(to);
  return MoveFileExW(wide_from.c_str(), wide_to.c_str(), 0) != 0 ? 0 : Replace(wide_from, wide_to);
}

// A second name keeps the file at `b` while the one at `a` takes its place.
int ExchangeNames(const std::string& a, const std::string& b) {
  const std::wstring wide_a = SystemPath(a);
  const std::wstring wide_b = SystemPath(b);
  const std::wstring aside = SystemPath(TemporaryPath(a));
  const DWORD attributes = GetFileAttributesW(wide_b.c_str());
  if (CreateHardLinkW(aside.c_str(), wide_b.c_str(), nullptr) == 0) return ERROR_NOT_SUPPORTED;
  int error = Replace(wide_a, wide_b);
  if (error != 0) {
    const Handle link(CreateFileW(aside.c_str(), DELETE | FILE_WRITE_ATTRIBUTES, kShareAll, nullptr,
                                  OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    if (link.ok()) (void)RemoveOpen(link.get(), attributes);
    return error;
  }
  error = ErrorUnless(MoveFileExW(aside.c_str(), wide_a.c_str(), 0));
  if (error == 0) {
    (void)SetFileAttributesW(wide_a.c_str(), attributes);  // it may have been read-only
  } else if (MoveFileExW(wide_b.c_str(), wide_a.c_str(), 0) != 0) {
    (void)MoveFileExW(aside.c_str(), wide_b.c_str(), 0);
  }
  return error;
}

bool MeansOtherFileSystem(int error) {
  return error == ERROR_NOT_SAME_DEVICE;
}

bool MeansUnsupported(int error) {
  return error == ERROR_NOT_SUPPORTED;
}

// The system has a journal of names, which who may write the folder can have written out.
Result SyncFolder(const std::string& folder) {
  const Handle opened(CreateFileW(SystemPath(folder).c_str(), GENERIC_WRITE, kShareAll, nullptr,
                                  OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  if (opened.ok()) (void)FlushFileBuffers(opened.get());
  return Success();
}

}  // namespace quendle::platform
