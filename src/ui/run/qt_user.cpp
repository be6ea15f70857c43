#include "ui/run/qt_user.h"

#include <QApplication>
#include <algorithm>
#include <utility>

#include "base/display.h"
#include "base/modString.h"
#include "files/file_manager.h"
#include "platform/services/launch.h"
#include "ui/messages/modMsgBox.h"
#include "ui/parts/text.h"
#include "ui/run/progress_display.h"
#include "ui/windows/frmOutput.h"
#include "ui/windows/frmOverwrite.h"

namespace quendle {
namespace {

constexpr const char* kLineBreak = "\r\n";

std::string Below(TextId text, const std::string& shown) {
  return LoadText(text) + kLineBreak + kLineBreak + shown;
}

class QtUser : public UserInterface {
 public:
  QtUser(const WindowsHost& host, std::function<ProgressClock::time_point()> now)
      : host_(host), progress_(std::move(now), host.operation_begin) {}
  ~QtUser() override {
    if (busy_ > 0) QGuiApplication::restoreOverrideCursor();
  }
  QtUser(const QtUser&) = delete;
  QtUser& operator=(const QtUser&) = delete;

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
  void EndProgress() override { progress_.End(); }
  void SetBusy(bool busy) override;
  void ShowInFileManager(const std::string& folder, const FileManager& manager) override;
  void OpenFile(const std::string& path, const std::string& untrusted_folder) override;

 private:
  // While this lives the program waits for the user, and not the other way round.
  class Waiting {
   public:
    explicit Waiting(QtUser& user) : user_(user) {
      user_.progress_.Pause();
      if (user_.busy_ > 0) QGuiApplication::restoreOverrideCursor();
    }
    ~Waiting() {
      if (user_.busy_ > 0) QGuiApplication::setOverrideCursor(Qt::WaitCursor);
      user_.progress_.Resume();
    }
    Waiting(const Waiting&) = delete;
    Waiting& operator=(const Waiting&) = delete;

   private:
    QtUser& user_;
  };

  // What a window is to stand in front of.
  QWidget* Owner() const {
    return progress_.Window() != nullptr ? progress_.Window() : QApplication::activeWindow();
  }
  bool AskYesNo(const std::string& prompt, std::int32_t icon, TextId title);
  void ShowFailure(TextId text, const platform::Result& failure, const std::string& path);

  WindowsHost host_;
  ProgressDisplay progress_;
  int busy_ = 0;  // how many have begun and not ended
};

bool QtUser::AskYesNo(const std::string& prompt, std::int32_t icon, TextId title) {
  const Waiting waiting(*this);
  return quendle::ShowMessage(prompt, kButtonsYesNo, icon, LoadText(title)) == kAnswerYes;
}

UserInterface::OverwriteAnswer QtUser::AskOverwrite(const platform::FileSide& existing,
                                                    const platform::FileSide& incoming) {
  const Waiting waiting(*this);
  return frmOverwrite(Owner(), existing, incoming).Ask();
}

bool QtUser::AskMakeFolder(const std::string& folder) {
  return AskYesNo(Below(TextId::kMakeFolderQuestion, ForDisplay(folder)), kIconQuestion,
                  TextId::kMakeFolderCaption);
}

bool QtUser::AskDelete(const std::string& path) {
  return AskYesNo(Below(TextId::kDeleteQuestion, ForDisplay(path)), kIconExclamation, TextId::kDeleteCaption);
}

std::optional<std::string> QtUser::AskPassword(const std::string& archive, bool is_again) {
  const std::string name = ForDisplay(SplitPath(archive).name);
  const Waiting waiting(*this);
  std::string typed =
      ShowPasswordInput(Below(is_again ? TextId::kAskPasswordAgain : TextId::kAskPassword, name),
                        LoadText(TextId::kPasswordCaption));
  if (typed.empty()) return std::nullopt;
  return typed;
}

bool QtUser::AskProceed(const Reason& question) {
  return AskYesNo(LoadText(ForDisplay(question)), kIconExclamation, TextId::kProceedCaption);
}

void QtUser::ShowMessage(MessageKind kind, const std::string& text) {
  const Waiting waiting(*this);
  const std::int32_t icon = kind == MessageKind::kCritical      ? kIconCritical
                            : kind == MessageKind::kExclamation ? kIconExclamation
                                                                : kIconInformation;
  (void)quendle::ShowMessage(text, kButtonsOk, icon, "");
}

void QtUser::ShowExtractionLog(const std::string& text) {
  const Waiting waiting(*this);
  frmOutput output(Owner());
  output.pText(text);
  output.setWindowModality(Qt::ApplicationModal);
  output.exec();
}

bool QtUser::ShowProgress(const platform::FileProgress& progress, bool simple) {
  return progress_.Report(progress, simple) && !host_.interrupt_requested();
}

void QtUser::SetBusy(bool busy) {
  if (busy) {
    if (busy_++ == 0) QGuiApplication::setOverrideCursor(Qt::WaitCursor);
  } else if (busy_ > 0 && --busy_ == 0) {
    QGuiApplication::restoreOverrideCursor();
  }
}

void QtUser::ShowFailure(TextId text, const platform::Result& failure, const std::string& path) {
  if (failure.ok()) return;
  const std::string why = LoadText(ForDisplay(failure.reason));
  const Waiting waiting(*this);
  (void)quendle::ShowMessage(Below(text, ForDisplay(path) + kLineBreak + why), kButtonsOk, kIconExclamation,
                             "");
}

void QtUser::ShowInFileManager(const std::string& folder, const FileManager& manager) {
  ShowFailure(TextId::kFolderNotOpened, OpenFolderWithFiler(manager, folder), folder);
}

void QtUser::OpenFile(const std::string& path, const std::string& untrusted_folder) {
  ShowFailure(TextId::kFileNotOpened, platform::OpenWithDesktop(path, untrusted_folder), path);
}

}  // namespace

std::unique_ptr<UserInterface> MakeQtUser(const WindowsHost& host,
                                          std::function<std::chrono::steady_clock::time_point()> now) {
  return std::make_unique<QtUser>(host, std::move(now));
}

}  // namespace quendle
