// An action window over files, settings and answers of a test.
#pragma once

#include <QTest>
#include <QtWidgets>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "support/run.h"
#include "ui/parts/text.h"
#include "ui/windows/editor_calls.h"
#include "ui/windows/frmAction.h"

namespace quendle::test {

class ActionWindow {
 public:
  // `names`: files to be made, or folders when they end in "/". Every path is confirmed.
  ActionWindow(const std::string& items, const std::vector<std::string>& names, std::int16_t archive_type = 0)
      : run(items, "[General]\nCheckArchive=1\nAction=0\n", Make(names)) {
    run.archiver->type = archive_type;
    run.mover->SHOWUSERFORM = true;
    services.pick_folder = [this](QWidget*, const std::string& prompt, const std::string& proposed) {
      asked.push_back(prompt + "|" + proposed);
      return picked;
    };
    services.show_message = [this](const std::string& text, std::int32_t, std::int32_t icon,
                                   const std::string&) {
      messages.push_back(std::to_string(icon) + "|" + text);
      return kAnswerOk;
    };
    services.show_input = titles.Answering();
    services.open_editor = [this](QWidget*, EditMode mode, const std::string& title) {
      edited.push_back(EditorCall(mode, title));
      return on_edit ? on_edit() : std::nullopt;
    };
    services.show_about = [this](QWidget*) { asked.emplace_back("about"); };
    form.emplace(ActionForm::Environment{*run.mover, run.file_info, run.user}, std::nullopt);
    if (!form->Advance()) return;
    window = std::make_unique<frmAction>(*form, *run.mover, services);
    window->show();
    EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
  }

  template <class Control>
  Control* Get(const char* name) const {
    return window->findChild<Control*>(name);
  }
  QLineEdit* txt(int i) const { return Get<QLineEdit>(qPrintable(QString("txt(%1)").arg(i))); }
  QCheckBox* chk(int i) const { return Get<QCheckBox>(qPrintable(QString("chk(%1)").arg(i))); }
  QLabel* lbl(int i) const { return Get<QLabel>(qPrintable(QString("lbl(%1)").arg(i))); }
  QComboBox* cbo(int i) const { return Get<QComboBox>(qPrintable(QString("cbo(%1)").arg(i))); }
  QPushButton* cmd(int i) const { return Get<QPushButton>(qPrintable(QString("cmd(%1)").arg(i))); }
  void Trigger(const char* action) const { Get<QAction>(action)->trigger(); }

  // As the desktop delivers it: to the control that has the focus.
  void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const {
    QWidget* focus = window->focusWidget();
    QTest::keyClick(focus == nullptr ? window.get() : focus, key, modifiers);
  }
  void Click(QWidget* control) const { QTest::mouseClick(control, Qt::LeftButton); }

  // The lines at the foot of the window, once they say what holds now.
  std::string Plan() const {
    const auto* pause = Get<QTimer>("planPause");
    EXPECT_TRUE(QTest::qWaitFor([pause] { return !pause->isActive(); }, 30'000));
    return ShownPlan();
  }
  std::string ShownPlan() const {
    QStringList lines;
    for (const QLabel* line : Get<QWidget>("plan")->findChildren<QLabel*>()) {
      if (!line->accessibleName().isEmpty()) lines += line->accessibleName();
    }
    return FromQt(lines.join('\n'));
  }

  TempFolder files;
  Run run;
  ActionServices services;
  std::string picked;  // the answer
  TypedTitles titles;
  std::function<std::optional<std::string>()> on_edit;  // the title under which it saves
  std::vector<std::string> asked, messages, edited;
  std::optional<ActionForm> form;
  std::unique_ptr<frmAction> window;

 private:
  std::vector<std::string> Make(const std::vector<std::string>& names) const {
    std::vector<std::string> paths;
    for (const std::string& name : names) {
      paths.push_back(files / name);
      if (name.ends_with('/')) {
        fs::create_directories(paths.back());
        paths.back().pop_back();
      } else if (!name.ends_with(".missing")) {
        WriteFile(paths.back(), name);
      }
    }
    return paths;
  }
};

}  // namespace quendle::test
