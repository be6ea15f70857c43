// Files and folders by their names in an open folder, for which Windows has only the functions of its kernel.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "platform/process/system_failure.h"
#include "platform/text/wide_win32.h"

namespace quendle::platform {

inline constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

inline Result ResultOf(DWORD error, std::string path) {
  return error == 0 ? Success() : SystemFailure(static_cast<int>(error), std::move(path));
}

// How an entry is opened or made: the rights, and the kernel's options. A link is opened itself, unless it is
// to be followed.
struct NtOpening {
  ACCESS_MASK access = FILE_READ_ATTRIBUTES;
  ULONG options = 0;
  bool makes = false;  // fails when the name is taken
  bool follows = false;
  ULONG attributes = FILE_ATTRIBUTE_NORMAL;  // of what is made
  DWORD share = kShareAll;
};

inline constexpr ULONG kOnlyFolders = 0x1;  // FILE_DIRECTORY_FILE
inline constexpr ULONG kOnlyFiles = 0x40;   // FILE_NON_DIRECTORY_FILE

// Opens the entry `name` of the folder, or the folder itself without a name; a name with ":" in it is
// refused. The functions answer 0 or an error as GetLastError has them.
DWORD OpenBelow(HANDLE folder, std::wstring_view name, const NtOpening& how, Handle* opened);

// Opens or makes a stream of the open file or folder by its name, which begins with ":".
DWORD OpenStream(HANDLE file, std::wstring_view name, const NtOpening& how, Handle* opened);

// Gives the open entry (right DELETE) another name in an open folder, or another name besides its own.
DWORD RenameOpen(HANDLE entry, HANDLE folder, std::wstring_view name, bool replace);
DWORD LinkOpen(HANDLE file, HANDLE folder, std::wstring_view name);

// The error of a call for that path, where it stands for a last name that is too long: some systems say that
// such a name is misspelt, others that it is not found. The functions here that take names say it so.
DWORD NamingError(DWORD error, std::wstring_view path);

// Removes the open entry (rights DELETE and FILE_WRITE_ATTRIBUTES), also one that is read-only.
DWORD RemoveOpen(HANDLE entry, DWORD attributes);

// Where the open entry is, as system calls take it; empty when that has no name.
std::wstring FinalPath(HANDLE entry);

}  // namespace quendle::platform
