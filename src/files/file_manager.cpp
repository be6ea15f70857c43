#include "files/file_manager.h"

#include "base/modString.h"
#include "platform/entries/paths.h"
#include "platform/services/launch.h"
#include "resources/string_table.h"

namespace quendle {
namespace {

// The full path of the program that FILER names; empty when there is none. A path that begins nowhere would
// mean another program in each current folder.
std::string FindFiler(const std::string& filer) {
  if (IsAbsolutePath(filer)) return filer;
  if (filer.empty() || filer.find(Separator(kHostStyle)) != std::string::npos) return "";
  return platform::FindOnSearchPath(filer);
}

}  // namespace

FileManager FileManagerOf(const SettingsValues& standard) {
  return {standard.Text(TextId::kFiler), standard.Text(TextId::kFilerParm)};
}

platform::Result OpenFolderWithFiler(const FileManager& manager, const std::string& folder) {
  const std::string path = RemoveBackslashes(folder);
  if (!FolderExists(path)) return platform::Success();
  if (const std::string filer = FindFiler(manager.program); !filer.empty()) {
    std::string parameters = manager.parameters;
    if (parameters.empty()) parameters = "\"%1\"";
    if (platform::StartProgramFor(filer, parameters, path).ok()) return platform::Success();
  }
  return platform::OpenWithDesktop(path, path);
}

}  // namespace quendle
