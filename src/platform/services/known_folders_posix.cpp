#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <memory>

#include "platform/entries/entry_status.h"
#include "platform/entries/path_names.h"
#include "platform/entries/paths.h"
#include "platform/process/process.h"
#include "platform/services/known_folders.h"

namespace quendle::platform {
namespace {

// The variable when it is an absolute path, which is the only form that means something; else empty.
std::string FolderVariable(const char* name) {
  const std::string folder = EnvironmentVariable(name).value_or("");
  return folder.starts_with('/') ? WithoutTrailingSlashes(folder) : "";
}

std::string Below(const std::string& folder, const char* name) {
  return (folder == "/" ? "" : folder) + "/" + name;
}

std::string HomeFolder() {
  if (std::string home = FolderVariable("HOME"); !home.empty()) return home;
  const passwd* user = getpwuid(getuid());
  return user == nullptr ? "/" : user->pw_dir;
}

// The value of XDG_DOWNLOAD_DIR="..." in user-dirs.dirs, which is either absolute or begins with $HOME/.
std::string ConfiguredDownloadFolder(const std::string& home) {
  constexpr std::string_view kKey = "XDG_DOWNLOAD_DIR=\"";
  constexpr std::string_view kHome = "$HOME/";
  std::ifstream file(SettingsRoot() + "/user-dirs.dirs");
  std::string folder;
  for (std::string line; std::getline(file, line);) {
    if (!line.starts_with(kKey)) continue;
    const std::size_t end = line.find('"', kKey.size());
    if (end == std::string::npos) continue;
    folder = line.substr(kKey.size(), end - kKey.size());
    if (folder.starts_with(kHome)) folder = Below(home, folder.c_str() + kHome.size());
  }
  return folder.starts_with('/') ? WithoutTrailingSlashes(folder) : "";
}

}  // namespace

std::string ExecutablePath() {
  return RealPath("/proc/self/exe");
}

std::string ExecutableFolder() {
  const std::string path = ExecutablePath();
  return path.empty() ? "" : FolderOf(path);
}

std::vector<std::string> LibraryFolders() {
  return {};
}

std::string TemporaryFolder() {
  const std::string folder = FolderVariable("TMPDIR");
  return IsFolder(folder) ? folder : "/tmp";
}

std::string RuntimeFolder() {
  const std::string folder = FolderVariable("XDG_RUNTIME_DIR");
  return IsFolder(folder) ? folder : "";
}

std::string SettingsRoot() {
  const std::string root = FolderVariable("XDG_CONFIG_HOME");
  return root.empty() ? Below(HomeFolder(), ".config") : root;
}

std::string StateFolder() {
  const std::string folder = FolderVariable("XDG_STATE_HOME");
  return folder.empty() ? Below(HomeFolder(), ".local/state") : folder;
}

std::string DownloadFolder() {
  const std::string home = HomeFolder();
  if (std::string folder = ConfiguredDownloadFolder(home); !folder.empty()) return folder;
  const std::string usual = Below(home, "Downloads");
  return IsFolder(usual) ? usual : home;
}

}  // namespace quendle::platform
