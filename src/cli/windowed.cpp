#include "cli/windowed.h"

#include <exception>
#include <optional>
#include <utility>

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

// A run with windows, which are made when the first is needed and are gone before what they know.
class Session {
 public:
  Session(const Options& options, const SettingsFolders& folders, platform::RunningCopy* copy,
          std::vector<std::string> passwords)
      : options_(options),
        copy_(copy),
        terminal_(platform::ErrorStreamColumns()),
        windows_(terminal_, [this](Reason* reason) { return LoadWindows(Host(), reason); }),
        globals_(folders, true, windows_, FindModuleFolder(), TakenPaths(options), std::move(passwords)) {}
  ~Session() { windows_.Unload(); }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  int Run();

 private:
  WindowsHost Host();
  bool WorkThrough(ActionForm* form);
  int RunPaths(const Options& options);
  int RunList();
  void Dispatch(const std::vector<std::string>& paths);

  const Options& options_;
  platform::RunningCopy* copy_;
  TerminalUser terminal_;
  LazyWindows windows_;
  Globals globals_;
};

WindowsHost Session::Host() {
  return {globals_,
          copy_,
          &platform::InterruptRequested,
          platform::InterruptHandle(),
          windows_.OperationBegin(),
          [this](const std::vector<std::string>& paths) { Dispatch(paths); }};
}

// True when every path was done.
bool Session::WorkThrough(ActionForm* form) {
  if (form->Advance()) {
    if (Windows* shown = windows_.Get()) {
      shown->RunActionWindow(*form);
    } else {
      form->SkipRest();
    }
  }
  for (const std::string& path : form->Undone()) TerminalUser::Warn(path);
  return form->Undone().empty();
}

// Works through the paths of the dispatcher.
int Session::RunPaths(const Options& options) {
  clsMover& mover = *globals_.g_Mover;
  std::optional<std::string> profile;
  if (!FindProfile(options, &mover, &profile)) return kExitUsage;
  mover.SHOWUSERFORM = WantsForm(options, &mover);
  ActionForm form({mover, *globals_.g_FileInfo, windows_}, profile);
  const bool all_done = WorkThrough(&form);
  for (const std::string& problem : mover.LibraryProblems()) TerminalUser::Warn(ForDisplay(problem));
  for (const std::string& problem : mover.ProfileProblems(false)) TerminalUser::Warn(ForDisplay(problem));
  TellUntold({form.Missing(), SurplusPaths(options), {}}, copy_, &windows_);
  return all_done ? kExitDone : kExitUndone;
}

// Without paths: the list of profiles.
int Session::RunList() {
  Windows* shown = windows_.Get();
  if (shown == nullptr) return kExitUndone;
  shown->RunMain();
  return kExitDone;
}

// For the list of profiles, which outlives a run that goes wrong.
void Session::Dispatch(const std::vector<std::string>& paths) {
  Options dropped = options_;
  dropped.paths = paths;
  try {
    const RunScope run(globals_, TakenPaths(dropped));
    if (RunPaths(dropped) == kExitUsage) {
      windows_.ShowMessage(UserInterface::MessageKind::kCritical,
                           LoadText(TextId::kNoSuchProfile, {ForDisplay(*dropped.profile)}));
    }
  } catch (const std::exception& fault) {
    TerminalUser::Warn(ForDisplay(fault.what()));
    windows_.ShowMessage(UserInterface::MessageKind::kCritical,
                         LoadText(TextId::kRunFault, {ForDisplay(fault.what())}));
  }
}

int Session::Run() {
  try {
    for (const std::string& warning : SettingsWarnings(globals_)) TerminalUser::Warn(ForDisplay(warning));
    const int status = options_.paths.empty() ? RunList() : RunPaths(options_);
    return status == kExitDone && !SurplusPaths(options_).empty() ? kExitUndone : status;
  } catch (const std::exception& fault) {
    TerminalUser::Warn(ForDisplay(fault.what()));
    windows_.ShowMessage(UserInterface::MessageKind::kCritical, LoadText(TextId::kRunTimeError));
    return kExitUndone;
  }
}

}  // namespace

int RunWindowed(const Options& options) {
  platform::CatchInterrupts();
  std::vector<std::string> passwords;
  if (!HasSettingsFolder(options) || !ReadPasswords(options.password_file, &passwords)) return kExitUsage;
  const SettingsFolders folders = FindSettingsFolders(options.settings);
  std::unique_ptr<platform::RunningCopy> copy;
  if (!BecomeFirst(options, folders, &copy)) return kExitUndone;
  return Session(options, folders, copy.get(), std::move(passwords)).Run();
}

}  // namespace quendle
