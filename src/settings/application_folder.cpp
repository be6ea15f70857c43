#include "settings/application_folder.h"
#include "platform/process/process.h"

#include "base/modString.h"
#include "base/text.h"
#include "platform/entries/entry_status.h"
#include "platform/entries/paths.h"
#include "platform/services/known_folders.h"
#include "resources/string_table.h"

namespace quendle {
namespace {

SettingsFolders Together(const std::string& folder) {
  const std::string whole = RemoveBackslash(MakeAbsolute(PlainPath(folder), platform::CurrentFolder()));
  return {whole, whole};
}

// Also when that cannot be found out: the run then fails on reading it, and goes by nobody else's settings.
bool MayHoldSettings(const std::string& folder) {
  platform::EntryStatus status;
  const platform::Code code =
      platform::ReadStatus(AddBackslash(folder) + LoadText(TextId::kStandardFile), &status).code;
  return code != platform::Code::kNotFound && code != platform::Code::kNotFolder;
}

}  // namespace

SettingsFolders FindSettingsFolders(const std::string& chosen) {
  if (!chosen.empty()) return Together(chosen);
  if (const auto home = platform::EnvironmentVariable("QUENDLE_HOME")) return Together(*home);
  const std::string executable_folder = platform::ExecutableFolder();
  if (!executable_folder.empty() && MayHoldSettings(executable_folder)) return Together(executable_folder);
  return {AddBackslash(platform::SettingsRoot()) + "quendle", platform::DownloadFolder()};
}

platform::Result CheckChosenFolder(const std::string& chosen) {
  const std::string folder = Together(chosen).application;
  if (FolderExists(folder)) return platform::Success();
  if (platform::IsTaken(folder))
    return platform::Failure(platform::Code::kRefused, folder, why::kThisIsNoFolder);
  const std::string parent = RemoveBackslashes(SplitPath(folder).folder);
  if (FolderExists(parent)) return platform::Success();
  return platform::Failure(platform::Code::kNotFound, folder, why::kNoParentFolder);
}

}  // namespace quendle
