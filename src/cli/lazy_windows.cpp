#include "cli/lazy_windows.h"

#include <utility>

#include "base/display.h"
#include "base/modString.h"
#include "platform/process/process.h"
#include "platform/services/keyboard.h"
#include "platform/services/library.h"

namespace quendle {
namespace {

constexpr std::chrono::seconds kQuietTime{1};

}  // namespace

Windows* LazyWindows::Get() {
  if (std::exchange(tried_, true)) return windows_.get();
  Reason reason;
  windows_ = loader_(&reason);
  if (!windows_) {
    terminal_.ShowMessage(MessageKind::kCritical,
                          "the windows cannot be shown: " + ForDisplay(Sentence(reason, Language::kEnglish)));
  } else if (is_busy_) {
    windows_->Dialogs().SetBusy(true);
  }
  return windows_.get();
}

UserInterface& LazyWindows::Dialogs() {
  Windows* windows = Get();
  return windows == nullptr ? terminal_ : windows->Dialogs();
}

UserInterface::OverwriteAnswer LazyWindows::AskOverwrite(const platform::FileSide& existing,
                                                         const platform::FileSide& incoming) {
  return Dialogs().AskOverwrite(existing, incoming);
}

bool LazyWindows::AskMakeFolder(const std::string& folder) {
  return Dialogs().AskMakeFolder(folder);
}

bool LazyWindows::AskDelete(const std::string& path) {
  return Dialogs().AskDelete(path);
}

std::optional<std::string> LazyWindows::AskPassword(const std::string& archive, bool is_again) {
  return Dialogs().AskPassword(archive, is_again);
}

bool LazyWindows::AskProceed(const Reason& question) {
  return Dialogs().AskProceed(question);
}

void LazyWindows::ShowMessage(MessageKind kind, const std::string& text) {
  Dialogs().ShowMessage(kind, text);
}

void LazyWindows::ShowExtractionLog(const std::string& text) {
  Dialogs().ShowExtractionLog(text);
}

bool LazyWindows::ShowProgress(const platform::FileProgress& progress, bool simple) {
  if (windows_) return windows_->Dialogs().ShowProgress(progress, simple);
  if (platform::InterruptRequested()) return false;
  const Clock::time_point now = Clock::now();
  if (!progress_begin_) progress_begin_ = now;
  if (now - *progress_begin_ < kQuietTime) return true;
  return Dialogs().ShowProgress(progress, simple);
}

void LazyWindows::EndProgress() {
  progress_begin_.reset();
  if (tried_) Dialogs().EndProgress();
}

void LazyWindows::SetBusy(bool busy) {
  is_busy_ = busy;
  if (windows_) windows_->Dialogs().SetBusy(busy);
}

void LazyWindows::ShowInFileManager(const std::string& folder, const FileManager& manager) {
  (windows_ ? windows_->Dialogs() : terminal_).ShowInFileManager(folder, manager);
}

void LazyWindows::OpenFile(const std::string& path, const std::string& untrusted_folder) {
  (windows_ ? windows_->Dialogs() : terminal_).OpenFile(path, untrusted_folder);
}

std::unique_ptr<Windows> LoadWindows(const WindowsHost& host, Reason* reason) {
  // It may have ended since the program began, and a toolkit that does not find it would end the process.
  if (!platform::HasDisplay()) {
    *reason = why::kDisplaySilent;
    return nullptr;
  }
  const std::string path =
      AddBackslash(FindModuleFolder()) + kWindowsLibrary + std::string(platform::kLibrarySuffix);
  std::unique_ptr<platform::Library> library;
  if (const platform::Result loaded =
          platform::Library::Load(path, &library, platform::Library::Binding::kWhenCalled);
      !loaded.ok()) {
    *reason = why::kAbout(loaded.path, loaded.reason);
    return nullptr;
  }
  const auto make = library->Find<MakeWindowsFunction>(kMakeWindows);
  // What a toolkit leaves behind is called until the process ends.
  static_cast<void>(library.release());
  if (make != nullptr) return std::unique_ptr<Windows>(make(host, reason));
  *reason = why::kAbout(path, why::kNotOwnLibrary);
  return nullptr;
}

}  // namespace quendle
