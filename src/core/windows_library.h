// What the program and its windows, which are a library of their own that is only loaded when one is needed, know of
// each other.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/user_interface.h"
#include "core/action_form.h"
#include "core/modMain.h"
#include "platform/services/running_copy.h"

namespace quendle {

// The file name of the library without its suffix; it lies in the module folder.
inline constexpr const char* kWindowsLibrary = "QuendleWindows";

class Windows {
 public:
  virtual ~Windows() = default;

  // Questions, messages, progress and the extraction log as windows.
  virtual UserInterface& Dialogs() = 0;

  // Shows the action window for the current path of `form` and goes on to those that follow it. Returns when none is
  // left or the user has ended the run.
  virtual void RunActionWindow(ActionForm& form) = 0;

  // Shows the list of profiles, from which everything else is reached; returns when the user has closed it.
  virtual void RunMain() = 0;
};

struct WindowsHost {
  Globals& globals;                // outlive the windows
  platform::RunningCopy* copy;     // may be null: nobody can ask for the windows then
  bool (*interrupt_requested)();   // the user wants the process to stop
  std::intptr_t interrupt_handle;  // becomes readable then; -1: there is none
  // When the operation in which the windows are loaded began; nothing when there is none.
  std::optional<std::chrono::steady_clock::time_point> operation_begin;
  // For the list of profiles: works through these paths, of which ten are taken, as if they were dropped on the
  // icon, with windows where the user is to be asked. Returns when that is over, and does not throw: what goes
  // wrong has been told.
  std::function<void(const std::vector<std::string>& paths)> dispatch = {};
};

// Exported by the library under this name. Null, with the reason in `*reason`, when no window can be shown. One call
// in a process.
inline constexpr const char* kMakeWindows = "QuendleMakeWindows";
using MakeWindowsFunction = Windows* (*)(const WindowsHost& host, Reason* reason);

}  // namespace quendle
