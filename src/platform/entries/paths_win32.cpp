#include "platform/entries/paths.h"
#include "platform/process/process.h"
#include "platform/process/system_failure.h"

#include <algorithm>

#include "platform/entries/entry_path.h"
#include "platform/entries/entry_status.h"
#include "platform/entries/nt_file_win32.h"
#include "platform/entries/open_folder.h"
#include "platform/entries/path_names.h"

namespace quendle::platform {
namespace {

constexpr std::size_t kDriveRoot = 3;  // "C:\"

bool IsAbsolute(std::string_view path) {
  return path.starts_with("\\\\") || (path.size() >= kDriveRoot && path.substr(1, 2) == ":\\");
}

Result InItsFolder(const std::string& path, Result (OpenFolder::*call)(const std::string&) const) {
  OpenFolder folder;
  Result result = OpenFolder::Open(FolderOf(path), FolderOf(path), OpenFolder::Use::kPass, &folder);
  if (result.ok()) result = (folder.*call)(NameOf(path));
  if (!result.ok()) result.path = path;
  return result;
}

// What does not exist yet has to be called so that other programs find it.
Result CheckNewName(const std::string& name, const std::string& path) {
  std::string safe;
  Result result = SafeRestOfPath(name, kHostNames, &safe);
  if (!result.ok()) return Failure(Code::kRefused, path, std::move(result.reason));
  if (safe == name) return Success();
  return Failure(Code::kRefused, path, why::kNoFilesOfName(name));
}

// The name under which its folder lists the entry; as it is given where the folder may not be listed, empty
// where there is no such entry.
std::wstring ListedName(const std::wstring& path, std::wstring_view name) {
  WIN32_FIND_DATAW found;
  const HANDLE search = FindFirstFileW(path.c_str(), &found);
  if (search != INVALID_HANDLE_VALUE) {
    FindClose(search);
    return found.cFileName;
  }
  if (GetLastError() != ERROR_ACCESS_DENIED) return L"";
  return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES ? std::wstring(name) : L"";
}

// Where the names begin in a path with the prefix, and nothing for a path without.
std::size_t RootLength(const std::wstring& path) {
  constexpr std::wstring_view kDrive = L"\\\\?\\C:\\";
  constexpr std::wstring_view kNetwork = L"\\\\?\\UNC\\";
  if (!path.starts_with(kNetwork)) return std::min(kDrive.size(), path.size());
  const std::size_t share = path.find(L'\\', kNetwork.size());
  return share == std::wstring::npos ? path.size()
                                     : std::min(path.find(L'\\', share + 1), path.size() - 1) + 1;
}

}  // namespace

std::string FindOnSearchPath(const std::string& name) {
  constexpr std::string_view kProgram = ".exe";
  const std::string file = name.find('.') == std::string::npos ? name + std::string(kProgram) : name;
  const std::string folders = EnvironmentVariable("PATH").value_or("") + ";";
  for (std::size_t begin = 0, end; (end = folders.find(';', begin)) != std::string::npos; begin = end + 1) {
    std::string folder = folders.substr(begin, end - begin);
    std::erase(folder, '"');
    if (!IsAbsolute(folder)) continue;
    std::string candidate = PathBelow(folder, file);
    EntryStatus status;
    if (ReadTargetStatus(candidate, &status).ok() && status.is_file()) return candidate;
  }
  return "";
}

Result MakeFolder(const std::string& path) {
  const std::wstring wide = SystemPath(path);
  if (CreateDirectoryW(wide.c_str(), nullptr) != 0) return Success();
  return ResultOf(NamingError(GetLastError(), wide), path);
}

Result MakeTemporaryFile(const std::string& folder, std::string* path) {
  std::string name = PathBelow(folder, "tmp" + RandomLetters());
  const Handle file(CreateFileW(SystemPath(name).c_str(), GENERIC_WRITE, kShareAll, nullptr, CREATE_NEW,
                                FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file.ok()) return LastSystemFailure(folder);
  *path = std::move(name);
  return Success();
}

Result RemoveFile(const std::string& path) {
  return InItsFolder(path, &OpenFolder::Remove);
}

Result RemoveEmptyFolder(const std::string& path) {
  return InItsFolder(path, &OpenFolder::RemoveFolder);
}

Result CheckPlace(const std::string& path) {
  std::string folder = WithoutTrailingSlashes(path);
  EntryStatus status;
  bool is_there = false;
  do {
    Result result = ReadTargetStatus(folder, &status);
    is_there = result.ok() && folder != path;
    if (!result.ok()) result = CheckNewName(NameOf(folder), path);
    if (!result.ok()) return result;
    if (!is_there && FolderOf(folder) == folder) return SystemFailure(ERROR_PATH_NOT_FOUND, folder);
    if (!is_there) folder = FolderOf(folder);
  } while (!is_there);
  if (!status.is_folder()) return Failure(Code::kNotFolder, folder, why::kNoFolderInPlace);
  const Handle writable(CreateFileW(SystemPath(folder).c_str(), FILE_ADD_FILE | FILE_ADD_SUBDIRECTORY,
                                    kShareAll, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  return writable.ok() ? Success() : LastSystemFailure(folder);
}

std::string CurrentFolder() {
  return WithoutTrailingSlashes(TextFromSystemPath(
      WholeText([](wchar_t* text, DWORD size) { return GetCurrentDirectoryW(size, text); })));
}

std::string LongPath(const std::string& path) {
  const std::wstring whole = SystemPath(path);
  // The system would take these for patterns; no name has them.
  constexpr std::size_t kPrefix = 4;
  if (whole.find_first_of(L"*?<>\"", kPrefix) != std::wstring::npos) return "";
  std::wstring result = whole.substr(0, RootLength(whole));
  if (result.empty() || GetFileAttributesW(result.c_str()) == INVALID_FILE_ATTRIBUTES) return "";
  for (std::size_t begin = result.size(), end; begin < whole.size(); begin = end + 1) {
    end = std::min(whole.find(L'\\', begin), whole.size());
    const std::wstring_view name = std::wstring_view(whole).substr(begin, end - begin);
    if (result.back() != L'\\') result += L'\\';
    const std::wstring listed = ListedName(std::wstring(result).append(name), name);
    if (listed.empty()) return "";
    result += listed;
  }
  return TextFromSystemPath(result);
}

}  // namespace quendle::platform
