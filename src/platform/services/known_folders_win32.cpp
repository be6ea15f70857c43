#include "platform/services/known_folders.h"

#include "platform/entries/path_names.h"
#include "platform/text/wide_win32.h"

// They need the system's header before them.
#include <knownfolders.h>
#include <shlobj.h>

namespace quendle::platform {
namespace {

std::string FolderText(std::wstring_view folder) {
  return WithoutTrailingSlashes(TextFromSystemPath(folder));
}

// Empty when the system has none, or the flags ask for one that is there and it is not.
std::string KnownFolder(const KNOWNFOLDERID& id, DWORD flags) {
  PWSTR path = nullptr;
  const HRESULT found = SHGetKnownFolderPath(id, flags, nullptr, &path);
  std::string folder = SUCCEEDED(found) ? FolderText(path) : "";
  CoTaskMemFree(path);
  return folder;
}

}  // namespace

std::string ExecutablePath() {
  return TextFromSystemPath(WholeText([](wchar_t* text, DWORD size) {
    const DWORD length = GetModuleFileNameW(nullptr, text, size);
    return length < size ? length : size * 2;  // cut off, and does not say what it needs
  }));
}

std::string ExecutableFolder() {
  const std::wstring program = WideFromText(ExecutablePath());
  return FolderText(std::wstring_view(program).substr(0, program.rfind(L'\\') + 1));
}

std::vector<std::string> LibraryFolders() {
  return {ExecutableFolder(), KnownFolder(FOLDERID_System, KF_FLAG_DEFAULT)};
}

std::string TemporaryFolder() {
  const std::wstring folder = WholeText([](wchar_t* text, DWORD size) { return GetTempPathW(size, text); });
  // The variable behind it often has a short name in it, and is never longer than what needs no prefix.
  const std::wstring spelled =
      WholeText([&](wchar_t* text, DWORD size) { return GetLongPathNameW(folder.c_str(), text, size); });
  return FolderText(spelled.empty() ? folder : spelled);
}

std::string RuntimeFolder() {
  return "";
}

std::string SettingsRoot() {
  return KnownFolder(FOLDERID_RoamingAppData, KF_FLAG_DONT_VERIFY);
}

std::string StateFolder() {
  return KnownFolder(FOLDERID_LocalAppData, KF_FLAG_DONT_VERIFY);
}

std::string DownloadFolder() {
  const std::string folder = KnownFolder(FOLDERID_Downloads, KF_FLAG_DEFAULT);
  return folder.empty() ? KnownFolder(FOLDERID_Profile, KF_FLAG_DONT_VERIFY) : folder;
}

}  // namespace quendle::platform
