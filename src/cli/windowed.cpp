#include "cli/windowed.h"

#include <exception>
#include <optional>

#include "base/display.h"
#include "base/modString.h"
#include "base/text.h"
#include "cli/lazy_windows.h"
#include "cli/start.h"
#include "cli/tell_untold.h"
#include "cli/terminal_user.h"
#include "cli/unattended.h"
#include "core/action_form.h"
#include "core/modMain.h"
#include "platform/entries/paths.h"
#include "platform/process/process.h"
#include "platform/services/keyboard.h"
#include "platform/services/running_copy.h"
#include "resources/string_table.h"
#include "settings/application_folder.h"

namespace quendle {
namespace {

// True when this is the first copy, or nobody can tell, which must not keep anybody from working.
bool BecomeFirst(const Options& options, const SettingsFolders& folders,
                 std::unique_ptr<platform::RunningCopy>* copy) {
  // However its path is written, a folder with settings is one.
  const std::string key = platform::WithRealFolder(AddBackslash(folders.application));
  const platform::Result claim = platform::RunningCopy::Claim(key, options.paths, copy);
  if (!claim.ok()) {
    TerminalUser::Warn(ForDisplay(claim.path + ": whether another copy is running cannot be found out: " +
                                  Sentence(claim.reason, Language::kEnglish)));
    return true;
  }
  if (*copy) return true;
  TerminalUser::Warn("another copy is running, and its window comes to the front");
  for (const std::string& path : options.paths) TerminalUser::Warn(ForDisplay(path) + ": not done");
  return false;
}

// While the settings cannot be read they may say that the user is to be asked.
bool WantsForm(const Options& options, clsMover* mover) {
  const auto ctrl_is_down = [] { return platform::IsKeyDown(platform::Key::kControl); };
  return options.confirm || !mover->SetItemDataToArray().ok() ||
         WantsConfirmation(mover->Settings().Standard(), ctrl_is_down);
}

// True when every path was done.
bool WorkThrough(ActionForm* form, LazyWindows* windows) {
  if (form->Advance()) {
    if (Windows* shown = windows->Get()) {
      shown->RunActionWindow(*form);
    } else {
      form->SkipRest();
    }
  }
  for (const std::string& path : form->Undone()) TerminalUser::Warn(path);
  return form->Undone().empty();
}

// Works through the paths of the dispatcher.
int RunPaths(const Options& options, Globals* globals, platform::RunningCopy* copy, LazyWindows* windows) {
  clsMover& mover = *globals->g_Mover;
  std::optional<std::string> profile;
  if (!FindProfile(options, &mover, &profile)) return kExitUsage;
  mover.SHOWUSERFORM = WantsForm(options, &mover);
  ActionForm form({mover, *globals->g_FileInfo, *windows}, profile);
  const bool all_done = WorkThrough(&form, windows);
  for (const std::string& problem : mover.LibraryProblems()) TerminalUser::Warn(ForDisplay(problem));
  for (const std::string& problem : mover.ProfileProblems(false)) TerminalUser::Warn(ForDisplay(problem));
  TellUntold({form.Missing(), SurplusPaths(options), {}}, copy, windows);
  return all_done ? kExitDone : kExitUndone;
}

// Without paths: the list of profiles.
int RunList(LazyWindows* windows) {
  Windows* shown = windows->Get();
  if (shown == nullptr) return kExitUndone;
  shown->RunMain();
  return kExitDone;
}

int Run(const Options& options, const SettingsFolders& folders, platform::RunningCopy* copy,
        const std::optional<std::string>& password) {
  TerminalUser terminal(platform::ErrorStreamColumns(), password);
  Globals* made = nullptr;
  LazyWindows* all_windows = nullptr;
  const auto dispatch = [&](const std::vector<std::string>& paths) {
    Options dropped = options;
    dropped.paths = paths;
    // The list of profiles outlives a run that goes wrong.
    try {
      const RunScope run(*made, TakenPaths(dropped));
      if (RunPaths(dropped, made, copy, all_windows) == kExitUsage) {
        all_windows->ShowMessage(UserInterface::MessageKind::kCritical,
                                 LoadText(TextId::kNoSuchProfile, {ForDisplay(*options.profile)}));
      }
    } catch (const std::exception& fault) {
      TerminalUser::Warn(ForDisplay(fault.what()));
      all_windows->ShowMessage(UserInterface::MessageKind::kCritical,
                               LoadText(TextId::kRunFault, {ForDisplay(fault.what())}));
    }
  };
  LazyWindows windows(terminal, [&](Reason* reason) {
    return LoadWindows({*made, copy, &platform::InterruptRequested, platform::InterruptHandle(), password,
                        all_windows->OperationBegin(), dispatch},
                       reason);
  });
  all_windows = &windows;
  const std::vector<std::string> paths = TakenPaths(options);
  Globals globals(folders, true, windows, FindModuleFolder(), paths);
  made = &globals;
  int status = kExitUndone;
  try {
    for (const std::string& warning : SettingsWarnings(globals)) TerminalUser::Warn(ForDisplay(warning));
    status = paths.empty() ? RunList(&windows) : RunPaths(options, &globals, copy, &windows);
    if (paths.size() < options.paths.size() && status == kExitDone) status = kExitUndone;
  } catch (const std::exception& fault) {
    TerminalUser::Warn(ForDisplay(fault.what()));
    windows.ShowMessage(UserInterface::MessageKind::kCritical, LoadText(TextId::kRunTimeError));
  }
  windows.Unload();  // they know the objects of the run
  return status;
}

}  // namespace

int RunWindowed(const Options& options) {
  platform::CatchInterrupts();
  std::optional<std::string> password;
  if (!HasSettingsFolder(options) || !ReadPassword(options.password_file, &password)) return kExitUsage;
  const SettingsFolders folders = FindSettingsFolders(options.settings);
  std::unique_ptr<platform::RunningCopy> copy;
  if (!BecomeFirst(options, folders, &copy)) return kExitUndone;
  return Run(options, folders, copy.get(), password);
}

}  // namespace quendle
