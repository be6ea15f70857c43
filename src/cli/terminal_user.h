// The user interface of an unattended run: nobody answers, progress is a line on the terminal, an interrupt
// cancels.
#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "base/user_interface.h"

namespace quendle {

class TerminalUser : public UserInterface {
 public:
  // `columns` of the terminal on which progress is shown; 0: none.
  explicit TerminalUser(int columns) : columns_(columns) {}

  OverwriteAnswer AskOverwrite(const platform::FileSide& existing,
                               const platform::FileSide& incoming) override;
  bool AskMakeFolder(const std::string& folder) override;
  bool AskDelete(const std::string& path) override;
  std::optional<std::string> AskPassword(const std::string& archive, bool is_again) override;
  bool AskProceed(const Reason& question) override;
  void ShowMessage(MessageKind kind, const std::string& text) override;
  void ShowExtractionLog(const std::string& text) override;
  bool HasWindows() const override { return false; }
  bool ShowProgress(const platform::FileProgress& progress, bool simple) override;
  void EndProgress() override;
  void SetBusy(bool busy) override;
  void ShowInFileManager(const std::string& folder, const FileManager& manager) override;
  void OpenFile(const std::string& path, const std::string& untrusted_folder) override;

  // A line on the error stream, after anything printed so far.
  static void Warn(const std::string& text);

 private:
  using Clock = std::chrono::steady_clock;

  int columns_;
  bool running_ = false;  // an operation reports progress
  bool line_shown_ = false;
  Clock::time_point begin_;  // of the operation
  Clock::time_point shown_;  // when the line was written last
};

}  // namespace quendle
