#include "cli/start.h"

#include "base/display.h"
#include "base/modString.h"
#include "cli/terminal_user.h"
#include "core/modMain.h"
#include "platform/entries/durable_file.h"
#include "platform/text/unicode.h"
#include "settings/application_folder.h"

namespace quendle {

std::vector<std::string> TakenPaths(const Options& options) {
  std::vector<std::string> paths = options.paths;
  for (std::string& path : paths) {
    path = PlainPath(path);
    if (FolderExists(path)) path = RemoveBackslashes(path);
  }
  for (const std::string& path : SurplusPaths(options)) {
    TerminalUser::Warn(ForDisplay(path) + ": left out, since only ten paths are taken without --batch");
  }
  if (IsWindowed(options) && paths.size() > kMostPaths) paths.resize(kMostPaths);
  return paths;
}

std::vector<std::string> SurplusPaths(const Options& options) {
  if (!IsWindowed(options) || options.paths.size() <= kMostPaths) return {};
  return {options.paths.begin() + kMostPaths, options.paths.end()};
}

bool HasSettingsFolder(const Options& options) {
  if (options.settings.empty()) return true;
  const platform::Result checked = CheckChosenFolder(options.settings);
  if (checked.ok()) return true;
  TerminalUser::Warn("--settings " + ForDisplay(checked.path) + ": " +
                     Sentence(checked.reason, Language::kEnglish));
  return false;
}

bool ReadPassword(const std::string& file, std::optional<std::string>* password) {
  if (file.empty()) return true;
  std::string bytes;
  const platform::Result read = platform::ReadWholeFile(file, &bytes);
  const std::string line = platform::WithoutMark(bytes.substr(0, bytes.find_first_of("\r\n")));
  if (read.ok() && !line.empty()) {
    *password = line;
    return true;
  }
  const std::string reason =
      read.ok() ? "there is no password in its first line" : Sentence(read.reason, Language::kEnglish);
  TerminalUser::Warn("--password-file " + ForDisplay(file) + ": " + reason);
  return false;
}

bool FindProfile(const Options& options, clsMover* mover, std::optional<std::string>* title) {
  const bool is_read = mover->SetItemDataToArray().ok();
  *title = options.profile && is_read ? mover->FindTitle(*options.profile) : options.profile;
  if (*title || !options.profile) return true;
  TerminalUser::Warn("no profile is called " + ForDisplay(*options.profile));
  return false;
}

}  // namespace quendle
