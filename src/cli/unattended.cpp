#include "cli/unattended.h"

#include <cstdio>
#include <optional>
#include <utility>

#include "base/display.h"
#include "base/modString.h"
#include "cli/report.h"
#include "cli/terminal_user.h"
#include "core/modMain.h"
#include "platform/durable_file.h"
#include "platform/keyboard.h"
#include "platform/process.h"
#include "platform/result.h"
#include "platform/unicode.h"
#include "settings/application_folder.h"

namespace quendle {
namespace {

bool IsWindowed(const Options& options) {
  return !options.batch && !options.dry_run;
}

// A run with windows takes ten paths; the others are named so that nobody believes them done.
std::vector<std::string> TakenPaths(const Options& options) {
  std::vector<std::string> paths = options.paths;
  for (std::string& path : paths) {
    // A shell completes the name of a folder with a separator, which is no part of the name.
    if (FolderExists(path)) path = RemoveBackslashes(path);
  }
  if (!IsWindowed(options) || paths.size() <= kMostPaths) return paths;
  for (std::size_t i = kMostPaths; i < paths.size(); ++i) {
    TerminalUser::Warn(ForDisplay(paths[i]) + ": left out, since only ten paths are taken without --batch");
  }
  paths.resize(kMostPaths);
  return paths;
}

// What a run with windows would do that this one does not.
void ExplainMissingWindows(const Options& options, Globals* globals) {
  if (platform::HasDisplay()) {
    TerminalUser::Warn("the windows come with a later version; acting as with --batch");
  }
  const auto ctrl_is_down = [] { return false; };  // only a window system can tell
  globals->g_Mover->SHOWUSERFORM =
      options.confirm || WantsConfirmation(*globals->g_PropDefault, ctrl_is_down);
  if (globals->g_Mover->SHOWUSERFORM) {
    TerminalUser::Warn("confirmation is asked for, but there is no window for it; see --dry-run");
  }
}

// False when nobody can be told any more.
bool Print(const Options& options, const DispatchReport& report) {
  const std::string line = options.json ? JsonLine(report) : TextLine(report);
  std::printf("%s\n", line.c_str());
  const bool is_written = std::fflush(stdout) == 0;  // a reader sees each line when its file is done
  const std::string reason = is_written ? "" : platform::LastSystemFailure("").reason;
  for (const std::string& problem : ProblemLines(report)) TerminalUser::Warn(problem);
  if (!is_written) TerminalUser::Warn("the results cannot be written: " + reason);
  return is_written;
}

int Left(const clsMover& mover, const std::string& why) {
  const int left = mover.CMDLINEMAX - mover.CMDLINECURRENT;
  if (left > 0) TerminalUser::Warn(why + "; paths that were not begun: " + std::to_string(left));
  return kExitUndone;
}

// The title to use for every path; false when the one asked for does not exist.
bool ResolveProfile(const Options& options, const clsMover& mover, DispatchOptions* dispatch) {
  if (!options.profile) return true;
  dispatch->profile = mover.FindTitle(*options.profile);
  if (!dispatch->profile) TerminalUser::Warn("no profile is called " + ForDisplay(*options.profile));
  return dispatch->profile.has_value();
}

// False when the file that is to hold the password does not.
bool ReadPassword(const std::string& file, std::optional<std::string>* password) {
  if (file.empty()) return true;
  std::string bytes;
  const platform::Result read = platform::ReadWholeFile(file, &bytes);
  const std::string line = platform::WithoutMark(bytes.substr(0, bytes.find_first_of("\r\n")));
  if (read.ok() && !line.empty()) {
    *password = line;
    return true;
  }
  const std::string reason = read.ok() ? "there is no password in its first line" : read.reason;
  TerminalUser::Warn("--password-file " + ForDisplay(file) + ": " + reason);
  return false;
}

}  // namespace

int RunUnattended(const Options& options) {
  platform::CatchInterrupts();
  std::optional<std::string> password;
  if (!ReadPassword(options.password_file, &password)) return kExitUsage;
  TerminalUser user(platform::ErrorStreamColumns(), std::move(password));
  const std::vector<std::string> paths = TakenPaths(options);
  Globals globals(FindSettingsFolders(options.settings), !options.dry_run, user, FindModuleFolder(), paths);
  user.OpenFoldersBy(*globals.g_PropDefault);
  if (IsWindowed(options)) ExplainMissingWindows(options, &globals);
  for (const std::string& warning : SettingsWarnings(globals)) TerminalUser::Warn(ForDisplay(warning));

  clsMover& mover = *globals.g_Mover;
  DispatchOptions dispatch{options.dry_run, std::nullopt};
  if (!ResolveProfile(options, mover, &dispatch)) return kExitUsage;

  int status = paths.size() == options.paths.size() ? kExitDone : kExitUndone;
  for (mover.CMDLINECURRENT = 1; mover.CMDLINECURRENT <= mover.CMDLINEMAX; ++mover.CMDLINECURRENT) {
    const DispatchReport report =
        DispatchCurrent(&mover, *globals.g_FileInfo, *globals.g_PropDefault, dispatch);
    if (!Print(options, report)) return Left(mover, "stopped");
    if (report.outcome != Outcome::kDone && report.outcome != Outcome::kPlanned) status = kExitUndone;
    if (platform::InterruptRequested() && mover.CMDLINECURRENT < mover.CMDLINEMAX) {
      return Left(mover, "interrupted");
    }
  }
  for (const std::string& problem : mover.LibraryProblems()) TerminalUser::Warn(ForDisplay(problem));
  if (options.dry_run) {
    for (const std::string& problem : mover.ProfileProblems()) TerminalUser::Warn(ForDisplay(problem));
  }
  return status;
}

}  // namespace quendle
