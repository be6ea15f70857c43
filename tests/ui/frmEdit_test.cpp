#include "ui/frmEdit.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QTest>
#include <algorithm>
#include <initializer_list>
#include <set>

#include "resources/string_table.h"
#include "support/scripted_user.h"
#include "support/settings.h"
#include "ui/modal.h"
#include "ui/text.h"

namespace quendle {
namespace {

using test::ReadFile;
using test::WriteFile;

constexpr std::int16_t kModes[] = {1, 2, 0, 4, 6};

class EditWindow {
 public:
  EditWindow(test::Settings& over, std::int16_t mode, const std::string& title = "A")
      : settings(over), draft(mode, title, {over.profiles, over.standard, over.test}) {
    EditServices services;
    services.pick_folder = [this](QWidget*, const std::string&, const std::string& start) {
      starts.push_back(start);
      return picked;
    };
    services.pick_file = [this](QWidget*, const FileDialogRequest&) { return picked; };
    services.show_message = [this](const std::string& text, std::int32_t buttons, std::int32_t,
                                   const std::string&) {
      messages.push_back(text);
      if (on_message) on_message();
      if (buttons == kButtonsOk) return kAnswerOk;
      const std::int32_t answer = answers.empty() ? kAnswerNo : answers.front();
      if (!answers.empty()) answers.erase(answers.begin());
      return answer;
    };
    services.open_tester = [this](QWidget*, const std::string& pattern, const std::string& name) {
      tested = pattern + "|" + name;
    };
    window = std::make_unique<frmEdit>(nullptr, draft, target, std::move(services));
    window->show();
    EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
  }

  template <class Control>
  Control* Get(const QString& name) const {
    auto* control = window->findChild<Control*>(name);
    EXPECT_NE(control, nullptr) << FromQt(name);
    return control;
  }
  // As a user does: what is there is selected, and goes with the first key.
  void Type(const char* key, const QString& text) const {
    auto* field = Get<QLineEdit>(QString("txt.") + key);
    window->setFocus();
    field->setFocus();
    QTest::keyClick(field, Qt::Key_Delete);
    QInputMethodEvent typed;  // any character, as an input method gives it
    typed.setCommitString(text);
    QApplication::sendEvent(field, &typed);
  }
  void Click(const QString& name) const {
    auto* button = Get<QAbstractButton>(name);
    QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(8, button->height() / 2));
  }
  void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) const {
    QWidget* focus = window->focusWidget();
    QTest::keyClick(focus == nullptr ? window.get() : focus, key, modifiers);
  }
  QString Field(const char* key) const { return Get<QLineEdit>(QString("txt.") + key)->text(); }
  std::string Items() const { return ReadFile(settings.folder / "items.ini"); }

  test::Settings& settings;
  clsFileInfo target;
  EditDraft draft;
  std::string picked, tested;
  std::vector<std::string> messages, starts;
  std::vector<std::int32_t> answers;
  std::function<void()> on_message;
  std::unique_ptr<frmEdit> window;
};

// Everything is set through the controls to what it was not, and is there again in a new window.
GTEST_TEST(FrmEdit, EveryFieldOfEveryUseComesBack) {
  for (const std::int16_t mode : kModes) {
    SCOPED_TRACE(mode);
    test::Settings settings("[A]\nOther=1\n", "[General]\nAutoCompDir=1\n", "[General]\n");
    const std::string title = mode == 2 ? "新 ~ €" : "A";
    std::vector<std::pair<QString, QString>> typed;
    std::set<QString> on;
    {
      EditWindow edit(settings, mode, title);
      if (mode == 1 || mode == 2) edit.Click("chk.ID");
      for (auto* field : edit.window->findChildren<QLineEdit*>()) {
        const bool is_folder = field->objectName().endsWith("To");
        const QString text = is_folder ? "/d \"é한\" " + field->objectName() : field->objectName() + " 'x\" ";
        const QString value = field->objectName().endsWith("Charset") ? QString("UTF-8") : text;
        edit.Type(qPrintable(field->objectName().mid(4)), value);
        typed.emplace_back(field->objectName(), value);
      }
      for (auto* box : edit.window->findChildren<QCheckBox*>()) {
        if (box->objectName() != "chk.ID") edit.Click(box->objectName());
        if (box->isChecked()) on.insert(box->objectName());
      }
      if (mode != 4) {
        edit.Click("opt.SmartRename.2");
        edit.Click("opt.ExtractType.2");
      }
      edit.Press(Qt::Key_Return, Qt::ControlModifier);
      EXPECT_FALSE(edit.window->isVisible());
      EXPECT_EQ(edit.messages, std::vector<std::string>());
      EXPECT_TRUE(edit.draft.IsSaved());
    }
    EditWindow again(settings, mode == 2 ? std::int16_t{1} : mode, title);
    for (const auto& [name, text] : typed)
      EXPECT_EQ(again.Get<QLineEdit>(name)->text(), text) << FromQt(name);
    for (auto* box : again.window->findChildren<QCheckBox*>()) {
      EXPECT_EQ(box->isChecked(), on.count(box->objectName()) != 0) << FromQt(box->objectName());
    }
    if (mode == 4) continue;
    EXPECT_TRUE(again.Get<QRadioButton>("opt.SmartRename.2")->isChecked());
    EXPECT_TRUE(again.Get<QRadioButton>("opt.ExtractType.2")->isChecked());
  }
}

GTEST_TEST(FrmEdit, LeavingChangesNoByte) {
  const std::string before = "[A]\nPattern=p\nID=1\nAction=-0\n\n[B]";
  const struct {
    const char* name;
    std::function<void(EditWindow&)> leave;
  } rows[] = {{"button", [](EditWindow& edit) { edit.Click("cmd.Cancel"); }},
              {"Esc", [](EditWindow& edit) { edit.Press(Qt::Key_Escape); }},
              {"Ctrl+W", [](EditWindow& edit) { edit.Press(Qt::Key_W, Qt::ControlModifier); }},
              {"close box", [](EditWindow& edit) { edit.window->close(); }},
              {"Enter on Cancel", [](EditWindow& edit) {
                 edit.Get<QPushButton>("cmd.Cancel")->setFocus();
                 edit.Press(Qt::Key_Return);
               }}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    test::Settings settings(before);
    EditWindow untouched(settings, 1);
    row.leave(untouched);
    EXPECT_FALSE(untouched.window->isVisible());
    EXPECT_TRUE(untouched.messages.empty());

    EditWindow edit(settings, 1);
    edit.Type("Pattern", "q");
    edit.answers = {kAnswerNo, kAnswerYes};
    row.leave(edit);
    EXPECT_TRUE(edit.window->isVisible());
    EXPECT_EQ(edit.Field("Pattern"), "q");
    EXPECT_NE(edit.messages.at(0).find("パターン"), std::string::npos);
    row.leave(edit);
    EXPECT_FALSE(edit.window->isVisible());
    EXPECT_FALSE(edit.draft.IsSaved());
    EXPECT_EQ(edit.Items(), before);
  }
}

GTEST_TEST(FrmEdit, InheritedValuesAreShownDimmed) {
  test::Settings settings("[A]\nSmartRename=1\n",
                          "[General]\nAction=6\nSmartRename=2\nOpenDir=1\nMoveTo=/m\n");
  EditWindow edit(settings, 1);
  EXPECT_TRUE(edit.Get<QCheckBox>("chk.Action.4")->isChecked());
  EXPECT_FALSE(edit.Get<QCheckBox>("chk.Action.4")->isEnabled());
  EXPECT_TRUE(edit.Get<QRadioButton>("opt.SmartRename.2")->isChecked());
  EXPECT_FALSE(edit.Get<QRadioButton>("opt.SmartRename.2")->isEnabled());
  EXPECT_TRUE(edit.Get<QCheckBox>("chk.OpenDir")->isChecked());
  EXPECT_EQ(edit.Get<QLineEdit>("txt.MoveTo")->placeholderText(), "/m");
  edit.Press(Qt::Key_I, Qt::AltModifier);
  QTRY_VERIFY(edit.Get<QCheckBox>("chk.Action.4")->isEnabled());
  EXPECT_TRUE(edit.Get<QRadioButton>("opt.SmartRename.1")->isChecked());
  edit.Get<QRadioButton>("opt.SmartRename.1")->setFocus();
  edit.Press(Qt::Key_Down);
  EXPECT_EQ(edit.draft.Number(text_id::kSmartRename), 2);
}

GTEST_TEST(FrmEdit, ButtonsFillTheirFields) {
  const test::TempFolder files;
  WriteFile(files / "abc_01.zip", "");
  test::Settings settings("[A]\nMoveTo=/start\n", "[General]\nCopyTo=/c\n");
  EditWindow edit(settings, 1);
  edit.Click("cmd.MoveTo");
  EXPECT_EQ(edit.Field("MoveTo"), "/start");
  edit.picked = files.path();
  edit.Click("cmd.MoveTo");
  EXPECT_EQ(FromQt(edit.Field("MoveTo")), files / "A");
  edit.Click("cmd.CopyTo");
  EXPECT_EQ(edit.starts, (std::vector<std::string>{"/start", "/start", "/c"}));
  edit.picked = "/\xFF";
  edit.Click("cmd.CopyTo");
  EXPECT_EQ(FromQt(edit.Field("CopyTo")), files / "A");
  EXPECT_NE(edit.messages.at(0).find("/\\xFF"), std::string::npos);
  edit.picked = files / "abc_01.zip";
  edit.Click("cmd.Propose");
  EXPECT_EQ(edit.Field("Pattern"), "abc_.*\\.zip");
  WriteFile(files / "x1.lzh", "");
  edit.target.SetFilename(files / "x1.lzh");
  edit.Click("cmd.Propose");
  edit.Click("cmd.Test");
  EXPECT_EQ(edit.tested, "x.*\\.lzh|x1.lzh");
  edit.Get<QLineEdit>("txt.Pattern")->setFocus();
  edit.Press(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(edit.Field("Pattern"), "abc_.*\\.zip");
  EditWindow general(settings, 4);
  general.picked = "/usr/bin/filer";
  general.Click("cmd.FILER");
  EXPECT_EQ(general.Field("FILER"), "/usr/bin/filer");
}

GTEST_TEST(FrmEdit, ProblemsAreToldAtOnceAndBeforeSaving) {
  const struct {
    std::int16_t mode;
    const char* key;
    const char* text;
    bool can_be_saved;
  } rows[] = {{1, "Pattern", "a(", true},           {1, "MoveTo", "rel", false},
              {1, "Include", "a\nb", false},        {1, "Exclude", "*.c", true},
              {0, "CopyTo", "/a/../b", false},      {6, "ExtractTo", "~", false},
              {4, "ArchiveCharset", "x-none", true}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.key);
    test::Settings settings("[A]\n\n", "[General]\n", "[General]\n");
    EditWindow edit(settings, row.mode);
    auto* hint = edit.Get<QLabel>(QString("hint.") + row.key);
    EXPECT_FALSE(hint->isVisible());
    edit.Type(row.key, row.text);
    EXPECT_TRUE(hint->isVisible());
    EXPECT_FALSE(hint->text().isEmpty());
    edit.Click("cmd.OK");
    EXPECT_TRUE(edit.window->isVisible());
    EXPECT_FALSE(edit.draft.IsSaved());
    EXPECT_NE(edit.messages.at(0).find(FromQt(hint->text())), std::string::npos);
    EXPECT_TRUE(edit.window->focusWidget()->objectName().endsWith(row.key));
    edit.answers = {kAnswerYes};
    edit.Click("cmd.OK");
    EXPECT_EQ(edit.draft.IsSaved(), row.can_be_saved);
  }
}

GTEST_TEST(FrmEdit, NewProfileExistsAfterwards) {
  test::Settings settings("[A]\nPattern=p\n");
  EditWindow edit(settings, 2, "a");
  edit.answers = {kAnswerNo, kAnswerYes, kAnswerYes};
  edit.Click("cmd.OK");  // no: without a pattern is not meant
  EXPECT_EQ(edit.window->focusWidget()->objectName(), "txt.Pattern");
  edit.Click("cmd.OK");
  EXPECT_EQ(edit.messages.back(), LoadText(1857));
  EXPECT_TRUE(edit.window->isVisible());
  WriteFile(settings.folder / "items.ini", "[B]\n");
  edit.Press(Qt::Key_Return);
  EXPECT_FALSE(edit.window->isVisible());
  EXPECT_EQ(edit.Items(), "[B]\n[a]\nPattern=\n");
}

GTEST_TEST(FrmEdit, OthersChangesAreToldOrAskedAbout) {
  const struct {
    const char* name;
    const char* theirs;
    std::vector<std::int32_t> answers;
    const char* after;
    bool is_closed;
    std::size_t messages;
  } rows[] = {
      {"another key", "[A]\nPattern=p\nInclude=t\n", {}, "[A]\nPattern=mine\nInclude=t\n", true, 1},
      {"mine", "[A]\nPattern=t\n", {kAnswerYes}, "[A]\nPattern=mine\n", true, 1},
      {"theirs", "[A]\nPattern=t\n", {kAnswerNo}, "[A]\nPattern=t\n", true, 1},
      {"undecided", "[A]\nPattern=t\n", {kAnswerCancel}, "[A]\nPattern=t\n", false, 1},
      {"the same", "[A]\nPattern=mine\n", {}, "[A]\nPattern=mine\n", true, 0},
      {"gone, saved anew", "[B]\nPattern=p\n", {kAnswerYes}, "[B]\nPattern=p\n[A]\nPattern=mine\n", true, 1},
      {"gone, not saved", "[B]\nPattern=p\n", {kAnswerNo}, "[B]\nPattern=p\n", false, 1},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    test::Settings settings("[A]\nPattern=p\n");
    EditWindow edit(settings, 1);
    edit.Type("Pattern", "mine");
    WriteFile(settings.folder / "items.ini", row.theirs);
    edit.answers = row.answers;
    edit.Click("cmd.OK");
    EXPECT_EQ(edit.Items(), row.after);
    EXPECT_EQ(edit.window->isVisible(), !row.is_closed);
    EXPECT_EQ(edit.messages.size(), row.messages);
    EXPECT_TRUE(row.is_closed || edit.Field("Pattern") == "mine");
  }
}

GTEST_TEST(FrmEdit, WhatIsSettledIsShownWhileTheRestIsOpen) {
  test::Settings settings("[A]\nPattern=p\nInclude=i\n");
  EditWindow edit(settings, 1);
  edit.Type("Pattern", "mine");
  edit.Type("Include", "mine");
  WriteFile(settings.folder / "items.ini", "[A]\nPattern=t\nInclude=t\n");
  edit.answers = {kAnswerNo, kAnswerCancel};
  edit.Click("cmd.OK");
  EXPECT_EQ(edit.Field("Pattern"), "t");
  EXPECT_EQ(edit.Field("Include"), "mine");
}

// What changes while the user answers is asked about, too.
GTEST_TEST(FrmEdit, AnswersAreNotOutrun) {
  test::Settings settings("[A]\nPattern=p\n");
  EditWindow edit(settings, 1);
  edit.Type("Pattern", "mine");
  WriteFile(settings.folder / "items.ini", "[A]\nPattern=t\n");
  edit.answers = {kAnswerYes, kAnswerNo};
  edit.on_message = [&] { WriteFile(settings.folder / "items.ini", "[A]\nPattern=later\n"); };
  edit.Click("cmd.OK");
  EXPECT_EQ(edit.messages.size(), 2U);
  EXPECT_EQ(edit.Items(), "[A]\nPattern=later\n");
}

GTEST_TEST(FrmEdit, FailedWriteKeepsEverything) {
  test::Settings settings("[A]\nPattern=p\n");
  EditWindow edit(settings, 4);
  edit.Type("FILER", "f");
  std::filesystem::remove_all(settings.folder.path());
  WriteFile(settings.folder.path(), "a file in the place of the folder");
  edit.Press(Qt::Key_Return);
  EXPECT_TRUE(edit.window->isVisible());
  EXPECT_EQ(edit.Field("FILER"), "f");
  ASSERT_EQ(edit.messages.size(), 1U);
  EXPECT_NE(edit.messages[0].find(settings.folder.path()), std::string::npos);
  EXPECT_NE(edit.messages[0].find("フォルダではありません"), std::string::npos) << edit.messages[0];
  std::filesystem::remove(settings.folder.path());
  std::filesystem::create_directory(settings.folder.path());
  edit.Press(Qt::Key_Return);
  EXPECT_FALSE(edit.window->isVisible());
  EXPECT_EQ(settings.standard.FILER(), "f");
}

GTEST_TEST(FrmEdit, OpensForWhatTheStoreSays) {
  const struct {
    std::int16_t mode;
    const char* caption;
    const char* field;
    const char* file;
  } rows[] = {{1, "プロファイルの編集 - A", "txt.MoveTo", "items.ini"},
              {2, "プロファイルの新規作成 - N", "txt.MoveTo", "items.ini"},
              {0, "標準の設定", "txt.MoveTo", "mover.ini"},
              {4, "動作設定", "txt.FILER", "mover.ini"},
              {6, "テスト用設定", "txt.ExtractTo", "test.ini"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.caption);
    const test::TempFolder folder;
    WriteFile(folder / "items.ini", "[A]\nPattern=p\n");
    test::ScriptedUser user;
    Globals globals({folder.path(), "/standard"}, true, user, "", {});
    globals.g_PropItem->EDITMODE = row.mode;
    globals.g_PropItem->Title = "A";
    globals.g_PropItem->NEWTITLE = row.mode == 2 ? "N" : "old";
    const test::WithModal act([&](QWidget& window) {
      if (auto* field = window.findChild<QLineEdit*>(row.field)) {
        EXPECT_EQ(FromQt(window.windowTitle()), row.caption);
        field->setFocus();
        QTest::keyClicks(field, "/typed");
        QTest::keyClick(field, Qt::Key_Return, Qt::ControlModifier);
      } else {
        test::Click(window, "Yes");  // without a pattern
      }
    });
    EXPECT_TRUE(OpenEditor(nullptr, globals));
    EXPECT_EQ(globals.g_PropItem->EDITMODE, 0);
    EXPECT_EQ(globals.g_PropItem->NEWTITLE, row.mode == 1 ? "A" : row.mode == 2 ? "N" : "old");
    EXPECT_NE(ReadFile(folder / row.file).find("=/typed"), std::string::npos);
  }
}

GTEST_TEST(FrmEdit, TabGoesFromTopToBottom) {
  test::Settings settings("[A]\nID=1\n");
  EditWindow edit(settings, 1);
  QStringList visited;
  do {
    visited += edit.window->focusWidget()->objectName();
    edit.Press(Qt::Key_Tab);
  } while (visited.size() < 40 && edit.window->focusWidget()->objectName() != visited.front());
  EXPECT_EQ(
      FromQt(visited.join(' ')),
      "txt.Pattern cmd.Propose cmd.Test chk.ID chk.Action.1 chk.Action.2 chk.Action.4 opt.SmartRename.1 "
      "opt.ExtractType.1 chk.SmartMakeDir chk.OpenDir txt.ExtractTo cmd.ExtractTo txt.MoveTo cmd.MoveTo "
      "txt.CopyTo cmd.CopyTo txt.Include txt.Exclude txt.OpenFile cmd.OK cmd.Cancel");
}

GTEST_TEST(FrmEdit, FitsSmallScreensAndKeyboards) {
  test::Settings settings("[A]\nPattern=a(\nMoveTo=r\nCopyTo=r\nExtractTo=r\n", "", "[General]\n");
  for (const std::int16_t mode : kModes) {
    SCOPED_TRACE(mode);
    const EditWindow edit(settings, mode);
    EXPECT_LE(edit.window->minimumSizeHint().width(), 1024);
    EXPECT_LE(edit.window->minimumSizeHint().height(), 600 - 30);
    std::set<QString> letters;
    static const QRegularExpression mnemonic("&(.)");
    for (auto* label : edit.window->findChildren<QLabel*>()) {
      if (label->buddy() == nullptr) continue;
      EXPECT_TRUE(letters.insert(mnemonic.match(label->text()).captured(1)).second) << FromQt(label->text());
    }
    for (auto* button : edit.window->findChildren<QAbstractButton*>()) {
      const QString letter = mnemonic.match(button->text()).captured(1);
      EXPECT_TRUE(letter.isEmpty() || letters.insert(letter).second) << FromQt(button->text());
      EXPECT_FALSE(button->toolTip().isEmpty()) << FromQt(button->text());
    }
  }
}

}  // namespace
}  // namespace quendle
