#include "platform/entries/nt_file_win32.h"

#include <cstddef>
#include <cstring>
#include <vector>

// It needs the system's header before it.
#include <winternl.h>

namespace quendle::platform {
namespace {

// What is to be set: the header does not know them all.
constexpr int kRename = 10;
constexpr int kLink = 11;
constexpr int kDisposition = 13;
constexpr int kDispositionEx = 64;
constexpr int kRenameEx = 65;

// Gone at once instead of when the last one who has it open closes it, and read-only or not.
constexpr ULONG kDelete = 0x1;
constexpr ULONG kDeletePosix = 0x2;
constexpr ULONG kDeleteReadOnly = 0x10;
constexpr ULONG kReplace = 0x1;
constexpr ULONG kReplacePosix = 0x2;
constexpr ULONG kReplaceReadOnly = 0x40;

DWORD ErrorOf(NTSTATUS status) {
  return status >= 0 ? 0 : RtlNtStatusToDosError(status);
}

DWORD Open(HANDLE root, std::wstring_view name, const NtOpening& how, Handle* opened) {
  constexpr std::size_t kLongest = 0x7FFF;
  if (name.size() > kLongest) return ERROR_FILENAME_EXCED_RANGE;
  UNICODE_STRING text;
  text.Buffer = const_cast<wchar_t*>(name.data());
  text.Length = static_cast<USHORT>(name.size() * sizeof(wchar_t));
  text.MaximumLength = text.Length;
  OBJECT_ATTRIBUTES object;
  InitializeObjectAttributes(&object, &text, OBJ_CASE_INSENSITIVE, root, nullptr);
  IO_STATUS_BLOCK outcome;
  HANDLE handle = nullptr;
  const ULONG options = how.options | FILE_SYNCHRONOUS_IO_NONALERT | FILE_OPEN_FOR_BACKUP_INTENT |
                        (how.follows ? 0 : FILE_OPEN_REPARSE_POINT);
  const NTSTATUS status =
      NtCreateFile(&handle, how.access | SYNCHRONIZE, &object, &outcome, nullptr, how.attributes, how.share,
                   how.makes ? FILE_CREATE : FILE_OPEN, options, nullptr, 0);
  if (status < 0) return ErrorOf(status);
  *opened = Handle(handle);
  return 0;
}

DWORD SetInformation(HANDLE entry, int what, void* data, std::size_t bytes) {
  FILE_INFORMATION_CLASS kind;
  static_assert(sizeof kind == sizeof what);
  std::memcpy(&kind, &what, sizeof kind);
  IO_STATUS_BLOCK outcome;
  return ErrorOf(NtSetInformationFile(entry, &outcome, data, static_cast<ULONG>(bytes), kind));
}

// `flags` are those of the newer kinds of renaming; of the older ones the lowest bit means the same.
DWORD SetName(HANDLE entry, int kind, ULONG flags, HANDLE folder, std::wstring_view name) {
  struct Header {
    ULONG flags;
    HANDLE folder;
    ULONG name_bytes;
    wchar_t name[1];
  };
  std::vector<std::byte> buffer(sizeof(Header) + name.size() * sizeof(wchar_t));
  Header header{flags, folder, static_cast<ULONG>(name.size() * sizeof(wchar_t)), {}};
  std::memcpy(buffer.data(), &header, sizeof header);
  std::memcpy(buffer.data() + offsetof(Header, name), name.data(), header.name_bytes);
  return SetInformation(entry, kind, buffer.data(), buffer.size());
}

DWORD SetAttributes(HANDLE entry, DWORD attributes) {
  FILE_BASIC_INFO basic = {};  // zero times stay as they are
  basic.FileAttributes = attributes == 0 ? FILE_ATTRIBUTE_NORMAL : attributes;
  return SetFileInformationByHandle(entry, FileBasicInfo, &basic, sizeof basic) != 0 ? 0 : GetLastError();
}

// For a system, or a file system, that does not know the newer kind of removal.
DWORD RemoveStepwise(HANDLE entry, DWORD attributes) {
  const bool is_read_only = (attributes & FILE_ATTRIBUTE_READONLY) != 0;
  if (is_read_only) (void)SetAttributes(entry, attributes & ~DWORD{FILE_ATTRIBUTE_READONLY});
  BOOLEAN remove = TRUE;
  const DWORD error = SetInformation(entry, kDisposition, &remove, sizeof remove);
  if (error != 0 && is_read_only) (void)SetAttributes(entry, attributes);
  return error;
}

}  // namespace

DWORD OpenBelow(HANDLE folder, std::wstring_view name, const NtOpening& how, Handle* opened) {
  if (name.find(L':') != std::wstring_view::npos) return ERROR_INVALID_NAME;
  return NamingError(Open(folder, name, how, opened), name);
}

DWORD OpenStream(HANDLE file, std::wstring_view name, const NtOpening& how, Handle* opened) {
  return Open(file, name, how, opened);
}

DWORD RenameOpen(HANDLE entry, HANDLE folder, std::wstring_view name, bool replace) {
  if (name.find(L':') != std::wstring_view::npos) return ERROR_INVALID_NAME;
  if (!replace) return NamingError(SetName(entry, kRename, 0, folder, name), name);
  const DWORD error = SetName(entry, kRenameEx, kReplace | kReplacePosix | kReplaceReadOnly, folder, name);
  return error == 0 ? 0 : NamingError(SetName(entry, kRename, kReplace, folder, name), name);
}

DWORD LinkOpen(HANDLE file, HANDLE folder, std::wstring_view name) {
  return NamingError(SetName(file, kLink, 0, folder, name), name);
}

DWORD NamingError(DWORD error, std::wstring_view path) {
  constexpr std::size_t kLongest = 255;
  if (error != ERROR_INVALID_NAME && error != ERROR_FILE_NOT_FOUND) return error;
  path = path.substr(0, path.find_last_not_of(L'\\') + 1);
  return path.size() - (path.rfind(L'\\') + 1) > kLongest ? ERROR_FILENAME_EXCED_RANGE : error;
}

DWORD RemoveOpen(HANDLE entry, DWORD attributes) {
  ULONG flags = kDelete | kDeletePosix | kDeleteReadOnly;
  if (SetInformation(entry, kDispositionEx, &flags, sizeof flags) == 0) return 0;
  return RemoveStepwise(entry, attributes);
}

std::wstring FinalPath(HANDLE entry) {
  std::wstring path(MAX_PATH, L'\0');
  for (const DWORD kind : {DWORD{VOLUME_NAME_DOS}, DWORD{VOLUME_NAME_GUID}}) {
    DWORD length = GetFinalPathNameByHandleW(entry, path.data(), static_cast<DWORD>(path.size()), kind);
    if (length >= path.size()) {
      path.resize(length + std::size_t{1});
      length = GetFinalPathNameByHandleW(entry, path.data(), static_cast<DWORD>(path.size()), kind);
    }
    if (length > 0 && length < path.size()) return path.substr(0, length);
  }
  return L"";
}

}  // namespace quendle::platform
