// A user whose answers are preset and who records what was asked and shown.
#pragma once

#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/user_interface.h"

namespace quendle::test {

class ScriptedUser : public UserInterface {
 public:
  // Given in turn; the last one holds on. Without any the answer is that of nobody.
  std::vector<OverwriteAnswer> overwrite_answers;
  bool make_folder_answer = false;
  bool delete_answer = false;
  bool proceed_answer = false;
  std::vector<std::string> passwords;  // given in turn, then none
  bool has_windows = false;
  // Called with each report, when set; false cancels.
  std::function<bool(const platform::FileProgress&)> on_progress;

  std::vector<std::string> asked_overwrite;  // the existing files
  std::vector<std::string> asked_make_folder;
  std::vector<std::string> asked_delete;
  std::vector<std::string> asked_password;  // the archives, "again: " before one whose password was wrong
  std::vector<std::string> asked_proceed;
  std::vector<std::string> messages;
  std::vector<std::string> logs;
  std::vector<std::string> opened_folders;
  std::string file_manager;  // that the last of them was opened by
  std::vector<std::string> opened_files;
  std::vector<bool> busy;  // each change
  int shown_progress = 0;
  int shown_simple_progress = 0;
  int ended_progress = 0;

  OverwriteAnswer AskOverwrite(const platform::FileSide& existing, const platform::FileSide&) override {
    asked_overwrite.push_back(existing.path);
    if (overwrite_answers.empty()) return OverwriteAnswer::kNobody;
    const std::size_t turn = std::min(asked_overwrite.size(), overwrite_answers.size());
    return overwrite_answers[turn - 1];
  }
  bool AskMakeFolder(const std::string& folder) override {
    asked_make_folder.push_back(folder);
    return make_folder_answer;
  }
  bool AskDelete(const std::string& path) override {
    asked_delete.push_back(path);
    return delete_answer;
  }
  std::optional<std::string> AskPassword(const std::string& archive, bool is_again) override {
    asked_password.push_back((is_again ? "again: " : "") + archive);
    if (asked_password.size() > passwords.size()) return std::nullopt;
    return passwords[asked_password.size() - 1];
  }
  bool AskProceed(const Reason& question) override {
    asked_proceed.push_back(English(question));
    return proceed_answer;
  }
  void ShowMessage(MessageKind kind, const std::string& text) override {
    messages.push_back((kind == MessageKind::kCritical ? "critical: " : "") + text);
  }
  void ShowExtractionLog(const std::string& text) override { logs.push_back(text); }
  bool HasWindows() const override { return has_windows; }
  bool ShowProgress(const platform::FileProgress& progress, bool simple) override {
    ++(simple ? shown_simple_progress : shown_progress);
    return !on_progress || on_progress(progress);
  }
  void EndProgress() override { ++ended_progress; }
  void SetBusy(bool is_busy) override { busy.push_back(is_busy); }
  void ShowInFileManager(const std::string& folder, const FileManager& manager) override {
    opened_folders.push_back(folder);
    file_manager = manager.program;
  }
  void OpenFile(const std::string& path, const std::string&) override { opened_files.push_back(path); }
};

}  // namespace quendle::test
