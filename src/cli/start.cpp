#include "cli/start.h"

#include <sstream>
#include <utility>

#include "base/display.h"
#include "base/modString.h"
#include "cli/terminal_user.h"
#include "core/modMain.h"
#include "platform/entries/durable_file.h"
#include "platform/text/unicode.h"
#include "settings/application_folder.h"

namespace quendle {
namespace {

// Without the empty ones. A line ends with LF or CR LF.
std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    if (line.ends_with('\r')) line.pop_back();
    if (!line.empty()) lines.push_back(std::move(line));
  }
  return lines;
}

}  // namespace

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

bool ReadPasswords(const std::string& file, std::vector<std::string>* passwords) {
  if (file.empty()) return true;
  std::string bytes;
  const platform::Result read = platform::ReadWholeFile(file, &bytes);
  std::string reason = read.ok() ? "" : Sentence(read.reason, Language::kEnglish);
  if (read.ok() && !platform::IsUtf8(bytes)) {
    reason = "it is not UTF-8 text";
  } else if (read.ok()) {
    *passwords = LinesOf(platform::WithoutMark(bytes));
    if (passwords->empty()) reason = "there is no password in it";
  }
  if (reason.empty()) return true;
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
