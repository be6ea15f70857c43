#include "cli/unattended.h"
#include "platform/process/system_failure.h"

#include <cstdio>
#include <optional>
#include <utility>

#include "base/display.h"
#include "cli/report.h"
#include "cli/start.h"
#include "cli/terminal_user.h"
#include "core/modMain.h"
#include "platform/process/process.h"
#include "reasons/result.h"
#include "settings/application_folder.h"

namespace quendle {
namespace {

// What a run with windows would do that this one does not.
void ExplainMissingWindows(const Options& options, Globals* globals) {
  const auto ctrl_is_down = [] { return false; };  // only a window system can tell
  clsMover& mover = *globals->g_Mover;
  mover.SHOWUSERFORM = options.confirm || WantsConfirmation(mover.Settings().Standard(), ctrl_is_down);
  if (mover.SHOWUSERFORM) {
    TerminalUser::Warn("confirmation is asked for, but no window can be shown here; see --dry-run");
  }
}

// False when nobody can be told any more.
bool Print(const Options& options, const DispatchReport& report) {
  const std::string line = options.json ? JsonLine(report) : TextLine(report);
  std::printf("%s\n", line.c_str());
  const bool is_written = std::fflush(stdout) == 0;  // a reader sees each line when its file is done
  const Reason reason = is_written ? Reason() : platform::LastSystemFailure("").reason;
  for (const std::string& problem : ProblemLines(report)) TerminalUser::Warn(problem);
  if (!is_written)
    TerminalUser::Warn("the results cannot be written: " + Sentence(reason, Language::kEnglish));
  return is_written;
}

int Left(const clsMover& mover, const std::string& why) {
  const int left = mover.CMDLINEMAX - mover.CMDLINECURRENT;
  if (left > 0) TerminalUser::Warn(why + "; paths that were not begun: " + std::to_string(left));
  return kExitUndone;
}

}  // namespace

int RunUnattended(const Options& options) {
  platform::CatchInterrupts();
  std::vector<std::string> passwords;
  if (!HasSettingsFolder(options) || !ReadPasswords(options.password_file, &passwords)) return kExitUsage;
  TerminalUser user(platform::ErrorStreamColumns());
  const std::vector<std::string> paths = TakenPaths(options);
  Globals globals(FindSettingsFolders(options.settings), !options.dry_run, user, FindModuleFolder(), paths,
                  std::move(passwords));
  if (IsWindowed(options)) ExplainMissingWindows(options, &globals);
  for (const std::string& warning : SettingsWarnings(globals)) TerminalUser::Warn(ForDisplay(warning));

  clsMover& mover = *globals.g_Mover;
  DispatchOptions dispatch{options.dry_run, std::nullopt};
  if (!FindProfile(options, &mover, &dispatch.profile)) return kExitUsage;

  int status = paths.size() == options.paths.size() ? kExitDone : kExitUndone;
  for (mover.CMDLINECURRENT = 1; mover.CMDLINECURRENT <= mover.CMDLINEMAX; ++mover.CMDLINECURRENT) {
    const DispatchReport report = DispatchCurrent(&mover, *globals.g_FileInfo, dispatch);
    if (!Print(options, report)) return Left(mover, "stopped");
    if (report.outcome != Outcome::kDone && report.outcome != Outcome::kPlanned) status = kExitUndone;
    if (platform::InterruptRequested() && mover.CMDLINECURRENT < mover.CMDLINEMAX) {
      return Left(mover, "interrupted");
    }
  }
  for (const std::string& problem : mover.LibraryProblems()) TerminalUser::Warn(ForDisplay(problem));
  for (const std::string& problem : mover.ProfileProblems(options.dry_run)) {
    TerminalUser::Warn(ForDisplay(problem));
  }
  return status;
}

}  // namespace quendle
