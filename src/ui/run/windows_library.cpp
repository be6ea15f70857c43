// The library's one entry.
#include "core/windows_library.h"

#include <QtWidgets>
#include <clocale>
#include <thread>

#include "platform/services/fonts.h"
#include "resources/version.h"
#include "ui/parts/form_helpers.h"
#include "ui/parts/held_keys.h"
#include "ui/parts/pictures.h"
#include "ui/parts/program_style.h"
#include "ui/parts/qt_texts.h"
#include "ui/parts/system_events.h"
#include "ui/parts/text.h"
#include "ui/run/qt_user.h"
#include "ui/windows/frmAbout.h"
#include "ui/windows/frmAction.h"
#include "ui/windows/frmEdit.h"
#include "ui/windows/frmMain.h"

namespace quendle {
namespace {

int argument_count = 1;
char program_name[] = "quendle";
char* arguments[] = {program_name, nullptr};

class QtWindows final : public Windows {
 public:
  explicit QtWindows(const WindowsHost& host);

  UserInterface& Dialogs() override { return *user_; }
  void RunActionWindow(ActionForm& form) override;
  void RunMain() override { RunProfileList(host_); }

 private:
  static void ComeToFront();
  static void CloseAll();

  WindowsHost host_;
  // While the application object talks to the display.
  std::jthread fonts_{platform::ReadFontList};
  QApplication application_{argument_count, arguments};
  std::unique_ptr<UserInterface> user_;
};

QtWindows::QtWindows(const WindowsHost& host) : host_(host) {
  fonts_.join();
  std::setlocale(LC_NUMERIC, "C");  // the program reads and writes numbers of its own
  auto* style = new ProgramStyle;
  style->setParent(&application_);  // as setStyle does, out of sight of clang-tidy
  QApplication::setStyle(style);
  QApplication::setDesktopFileName("quendle");
  QApplication::setQuitOnLastWindowClosed(false);
  QTimer::singleShot(kAfterFirstPaint, &application_,
                     [] { QApplication::setWindowIcon(Picture("quendle")); });
  QApplication::setFont(DialogFont());
  InstallQtTexts(&application_);
  TellHeldKeys(&application_);
  user_ = MakeQtUser(host_);
  if (host_.copy != nullptr) {
    WhenReady(host_.copy->WaitHandle(), &application_, [this] {
      if (host_.copy->TakeRequest()) ComeToFront();
      for (QWidget* window : QApplication::topLevelWidgets()) {
        if (auto* list = dynamic_cast<frmMain*>(window)) list->TellOfOtherCopy();
      }
      return true;
    });
  }
  // Nobody takes the request away, so that one is enough.
  WhenReady(host_.interrupt_handle, &application_, [] {
    CloseAll();
    return false;
  });
}

// The window that the user worked with last: of several a modal one.
void QtWindows::ComeToFront() {
  QWidget* front = QApplication::activeModalWidget();
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (front == nullptr && window->isVisible() && window->isWindow()) front = window;
  }
  if (front == nullptr) return;
  front->setWindowState(front->windowState() & ~Qt::WindowMinimized);
  front->raise();
  front->activateWindow();
}

// A window that is at work stays until it is done, and is asked again.
void QtWindows::CloseAll() {
  QApplication::closeAllWindows();
  QTimer::singleShot(100, [] {
    const auto windows = QApplication::topLevelWidgets();
    if (std::any_of(windows.begin(), windows.end(), [](QWidget* w) { return w->isVisible(); })) CloseAll();
  });
}

void QtWindows::RunActionWindow(ActionForm& form) {
  Globals& globals = host_.globals;
  ActionServices services;
  services.open_editor = [&globals](QWidget* owner, EditMode mode, const std::string& title) {
    return OpenEditor(owner, globals, mode, title);
  };
  services.show_about = [](QWidget* owner) { ShowAbout(owner, FindModuleFolder()); };
  frmAction window(form, *globals.g_Mover, std::move(services));
  window.Run();
}

}  // namespace
}  // namespace quendle

extern "C" Q_DECL_EXPORT quendle::Windows* QuendleMakeWindows(const quendle::WindowsHost& host,
                                                              quendle::Reason* reason) {
  *reason = quendle::MissingPlatform();
  return reason->empty() ? new quendle::QtWindows(host) : nullptr;
}
