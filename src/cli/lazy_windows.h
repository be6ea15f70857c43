// The user interface of a run with windows before there is any: the library with the windows is loaded by the first question,
// message or long operation, and by nothing else.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "base/user_interface.h"
#include "core/windows_library.h"

namespace quendle {

class LazyWindows : public UserInterface {
 public:
  // Gives the windows, or null with the reason.
  using Loader = std::function<std::unique_ptr<Windows>(Reason* reason)>;

  // `terminal` answers when the windows cannot be had.
  LazyWindows(UserInterface& terminal, Loader loader) : terminal_(terminal), loader_(std::move(loader)) {}

  // Loads them if need be. Null when they cannot be had, which has been said on the terminal then.
  Windows* Get();

  // Of the operation that reports progress, if any.
  std::optional<std::chrono::steady_clock::time_point> OperationBegin() const { return progress_begin_; }

  // No window is shown from now on.
  void Unload() { windows_.reset(); }

  OverwriteAnswer AskOverwrite(const platform::FileSide& existing,
                               const platform::FileSide& incoming) override;
  bool AskMakeFolder(const std::string& folder) override;
  bool AskDelete(const std::string& path) override;
  std::optional<std::string> AskPassword(const std::string& archive, bool is_again) override;
  bool AskProceed(const Reason& question) override;
  void ShowMessage(MessageKind kind, const std::string& text) override;
  void ShowExtractionLog(const std::string& text) override;
  bool HasWindows() const override { return true; }
  bool ShowProgress(const platform::FileProgress& progress, bool simple) override;
  void EndProgress() override;
  void SetBusy(bool busy) override;
  void ShowInFileManager(const std::string& folder, const FileManager& manager) override;
  void OpenFile(const std::string& path, const std::string& untrusted_folder) override;

 private:
  using Clock = std::chrono::steady_clock;

  UserInterface& Dialogs();

  UserInterface& terminal_;
  Loader loader_;
  bool tried_ = false;
  std::unique_ptr<Windows> windows_;
  bool is_busy_ = false;
  std::optional<Clock::time_point> progress_begin_;
};

// Loads the library in the program's module folder.
std::unique_ptr<Windows> LoadWindows(const WindowsHost& host, Reason* reason);

}  // namespace quendle
