#include "ui/windows/frmEdit.h"

#include <QTest>
#include <QtWidgets>
#include <set>

#include "platform/entries/paths.h"
#include "resources/string_table.h"
#include "support/scoped_variable.h"
#include "support/scripted_user.h"
#include "support/settings.h"
#include "ui/modal.h"
#include "ui/parts/text.h"
#include "ui/windows/editor_calls.h"

namespace quendle {
namespace {

using test::WriteFile;

constexpr EditMode kModes[] = {EditMode::kProfile, EditMode::kNew, EditMode::kStandard, EditMode::kGeneral,
                               EditMode::kTest};

// A window as its user sees it.
struct Driver {
  template <class Control>
  Control* Get(const QString& name) const {
    auto* control = window->findChild<Control*>(name);
    EXPECT_NE(control, nullptr) << FromQt(name);
    return control;
  }
  // What is there is selected, and goes with the first key.
  void Type(const QString& key, const QString& text) const {
    auto* field = Get<QLineEdit>("txt." + key);
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
    QTest::keyClick(window->focusWidget(), key, modifiers);
  }
  QString Field(const char* key) const { return Get<QLineEdit>(QString("txt.") + key)->text(); }
  QStringList State() const {
    QStringList state;
    for (auto* field : window->findChildren<QLineEdit*>()) state += field->objectName() + field->text();
    for (auto* button : window->findChildren<QAbstractButton*>()) {
      if (button->isCheckable()) state += button->objectName() + (button->isChecked() ? " on" : " off");
    }
    return state;
  }

  QWidget* window;
};

class EditWindow : public Driver {
 public:
  explicit EditWindow(test::Settings& over, EditMode mode = EditMode::kProfile,
                      const std::string& title = "A")
      : settings(over), draft(mode, title, {over.profiles, over.standard, over.test}) {
    EditServices services;
    services.pick_folder = [this](QWidget*, const std::string&, const std::string& start) {
      starts.push_back(start);
      return picked;
    };
    services.pick_file = [this](QWidget*, const FileDialogRequest&) { return picked; };
    services.show_message = [this](const std::string& text, std::int32_t buttons, auto&&...) {
      messages.push_back(text);
      if (on_message) on_message();
      if (buttons == kButtonsOk || answers.empty()) return buttons == kButtonsOk ? kAnswerOk : kAnswerNo;
      const std::int32_t answer = answers.front();
      answers.erase(answers.begin());
      return answer;
    };
    services.open_tester = [this](QWidget*, const std::string& pattern, const std::string& name) {
      tested = pattern + "|" + name;
    };
    form = std::make_unique<frmEdit>(nullptr, draft, target, std::move(services));
    window = form.get();
    window->show();
    EXPECT_TRUE(QTest::qWaitForWindowActive(window));
  }
  std::string Items() const { return test::ReadFile(settings.folder / "items.ini"); }
  void OthersWrite(const char* items) const { WriteFile(settings.folder / "items.ini", items); }

  test::Settings& settings;
  clsFileInfo target;
  EditDraft draft;
  std::string picked, tested;
  std::vector<std::string> messages, starts;
  std::vector<std::int32_t> answers;  // No when there are none
  std::function<void()> on_message;
  std::unique_ptr<frmEdit> form;
};

void ChangeEverything(const Driver& edit) {
  const QStringList before = edit.State();
  if (edit.window->findChild<QWidget*>("chk.ID") != nullptr) edit.Click("chk.ID");
  for (auto* field : edit.window->findChildren<QLineEdit*>()) {
    const QString key = field->objectName().mid(4);
    edit.Type(key, key == "ArchiveCharset" ? "UTF-8" : "/d \"é한\" " + key);
  }
  for (auto* box : edit.window->findChildren<QCheckBox*>()) {
    if (box->objectName() != "chk.ID") edit.Click(box->objectName());
  }
  if (!edit.window->findChildren<QRadioButton*>().empty()) {
    edit.Click("opt.SmartRename.2");
    edit.Click("opt.ExtractType.2");
  }
  for (const QString& control : edit.State()) {
    EXPECT_TRUE(!before.contains(control) || control.startsWith("opt.")) << FromQt(control);
  }
}

GTEST_TEST(FrmEdit, EveryFieldOfEveryUseComesBack) {
  for (const EditMode mode : kModes) {
    SCOPED_TRACE(test::EditorCall(mode, ""));
    const test::TempFolder folder;
    for (const char* name : {"mover.ini", "test.ini"}) WriteFile(folder / name, "[General]\n");
    WriteFile(folder / "items.ini", "[A]\nOther=1\n");
    test::ScriptedUser user;
    Globals globals({folder.path(), "/standard"}, true, user, "", {});
    const bool is_new = mode == EditMode::kNew;
    const std::string title = is_new ? "新 ~ €" : "A";
    QStringList typed, read;
    const test::WithModal act([&](QWidget& window) {
      if (typed.empty()) ChangeEverything({&window});
      read = Driver{&window}.State();
      if (typed.empty()) typed = read;
      QTest::keyClick(&window, Qt::Key_Return, Qt::ControlModifier);
    });
    const bool is_profile = is_new || mode == EditMode::kProfile;
    EXPECT_EQ(OpenEditor(nullptr, globals, mode, title), is_profile ? title : "");
    const char* file = is_profile ? "items.ini" : mode == EditMode::kTest ? "test.ini" : "mover.ini";
    EXPECT_GT(test::ReadFile(folder / file).size(), 100U);
    EXPECT_EQ(OpenEditor(nullptr, globals, is_new ? EditMode::kProfile : mode, title), std::nullopt);
    EXPECT_EQ(act.windows(), 2);
    EXPECT_EQ(read, typed);
  }
}

GTEST_TEST(FrmEdit, LeavingChangesNoByte) {
  const std::string before = "[A]\nPattern=p\nID=1\nAction=-0\n\n[B]";
  const std::function<void(EditWindow&)> ways[] = {
      [](EditWindow& edit) { edit.Click("cmd.Cancel"); },
      [](EditWindow& edit) { edit.Press(Qt::Key_Escape); },
      [](EditWindow& edit) { edit.Press(Qt::Key_W, Qt::ControlModifier); },
      [](EditWindow& edit) { edit.window->close(); }};
  for (const auto& leave : ways) {
    SCOPED_TRACE(&leave - ways);
    test::Settings settings(before);
    EditWindow untouched(settings);
    leave(untouched);
    EXPECT_FALSE(untouched.window->isVisible());
    EditWindow edit(settings);
    edit.Type("Pattern", "q");
    leave(edit);
    EXPECT_TRUE(edit.window->isVisible());
    edit.answers = {kAnswerYes};
    leave(edit);
    EXPECT_FALSE(edit.window->isVisible());
    EXPECT_NE(edit.messages.at(1).find("パターン"), std::string::npos);
    EXPECT_EQ(edit.Items(), before);
  }
}

GTEST_TEST(FrmEdit, InheritedValuesAreShownDimmed) {
  test::Settings settings("[A]\nSmartRename=1\n", "[General]\nSmartRename=2\nMoveTo=/m\n");
  EditWindow edit(settings);
  EXPECT_TRUE(edit.Get<QRadioButton>("opt.SmartRename.2")->isChecked());
  EXPECT_FALSE(edit.Get<QRadioButton>("opt.SmartRename.2")->isEnabled());
  EXPECT_EQ(edit.Get<QLineEdit>("txt.MoveTo")->placeholderText(), "/m");
  edit.Press(Qt::Key_I, Qt::AltModifier);
  auto* own = edit.Get<QRadioButton>("opt.SmartRename.1");
  QTRY_VERIFY(own->isEnabled());
  EXPECT_TRUE(own->isChecked());
  own->setFocus();
  edit.Press(Qt::Key_Down);
  EXPECT_EQ(edit.draft.Number(TextId::kSmartRename), 2);
}

GTEST_TEST(FrmEdit, ButtonsFillTheirFields) {
  const test::TempFolder files;
  for (const char* name : {"abc_01.zip", "x1.lzh"}) WriteFile(files / name, "");
  test::Settings settings("[A]\nMoveTo=/start\n");
  EditWindow edit(settings);
  for (const char* picked : {"", "/\xFF", "/picked"}) {
    EXPECT_EQ(edit.Field("MoveTo"), "/start");
    edit.picked = picked;
    edit.Click("cmd.MoveTo");
  }
  EXPECT_EQ(edit.Field("MoveTo"), "/picked/A");
  edit.Click("cmd.CopyTo");
  EXPECT_EQ(edit.starts, (std::vector<std::string>{"/start", "/start", "/start", "/standard"}));
  EXPECT_NE(edit.messages.at(0).find("/\\xFF"), std::string::npos);
  edit.picked = files / "abc_01.zip";
  edit.Click("cmd.Propose");
  edit.target.SetFilename(files / "x1.lzh");
  edit.Click("cmd.Propose");
  edit.Click("cmd.Test");
  EXPECT_EQ(edit.tested, "x.*\\.lzh|x1.lzh");
  edit.Get<QLineEdit>("txt.Pattern")->setFocus();
  edit.Press(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(edit.Field("Pattern"), "abc_.*\\.zip");
  EditWindow general(settings, EditMode::kGeneral);
  general.picked = "/usr/bin/filer";
  general.Click("cmd.FILER");
  EXPECT_EQ(general.Field("FILER"), "/usr/bin/filer");
}

GTEST_TEST(FrmEdit, SendToIsSwitchedAtOnce) {
  const test::TempFolder home;
  const test::ScopedVariable data("XDG_DATA_HOME", home.path());
  const test::ScopedVariable no_tools("PATH", home.path());  // which would go on in the folder
  test::Settings settings("");
  EditWindow edit(settings, EditMode::kGeneral);
  const std::string entry = home / "applications/quendle.desktop";
  EXPECT_EQ(edit.Get<QAbstractButton>("cmd.SendTo")->text(), "送るメニューに登録");
  edit.Click("cmd.SendTo");
  EXPECT_TRUE(platform::IsTaken(entry));
  EXPECT_EQ(edit.Get<QAbstractButton>("cmd.SendTo")->text(), "送るメニューから削除");
  edit.Click("cmd.SendTo");
  EXPECT_FALSE(platform::IsTaken(entry));
  EXPECT_TRUE(edit.messages.empty());
  WriteFile(entry, "of somebody else");
  edit.Click("cmd.SendTo");
  ASSERT_EQ(edit.messages.size(), 1U);
  EXPECT_NE(edit.messages.front().find(entry), std::string::npos) << edit.messages.front();
}

GTEST_TEST(FrmEdit, ProblemsAreToldAtOnceAndBeforeSaving) {
  test::Settings settings("[A]\n\n");
  EditWindow edit(settings);
  edit.Type("Include", "a\nb");
  auto* hint = edit.Get<QLabel>("hint.Include");
  EXPECT_TRUE(hint->isVisible());
  edit.Click("cmd.OK");
  EXPECT_NE(edit.messages.at(0).find(FromQt(hint->text())), std::string::npos);
  EXPECT_EQ(edit.window->focusWidget()->objectName(), "txt.Include");
  edit.Type("Include", "");
  EXPECT_FALSE(hint->isVisible());
  edit.Type("Pattern", "a(");
  EXPECT_TRUE(edit.Get<QLabel>("hint.Pattern")->isVisible());
  edit.Click("cmd.OK");
  EXPECT_EQ(edit.Items(), "[A]\n\n");
  edit.answers = {kAnswerYes};
  edit.Click("cmd.OK");
  EXPECT_EQ(edit.Items(), "[A]\nPattern=a(\n\n");
}

GTEST_TEST(FrmEdit, NewProfileExistsAfterwards) {
  test::Settings settings("[A]\nPattern=p\n");
  EditWindow edit(settings, EditMode::kNew, "a");
  edit.answers = {kAnswerNo, kAnswerYes, kAnswerYes};
  edit.Click("cmd.OK");  // no: without a pattern is not meant
  EXPECT_EQ(edit.window->focusWidget()->objectName(), "txt.Pattern");
  edit.Click("cmd.OK");
  EXPECT_EQ(edit.messages.back(), LoadText(TextId::kSameProfileName));
  EXPECT_TRUE(edit.window->isVisible());
  edit.OthersWrite("[B]\n");
  edit.Press(Qt::Key_Return);
  EXPECT_FALSE(edit.window->isVisible());
  EXPECT_EQ(edit.Items(), "[B]\n[a]\nPattern=\n");
}

GTEST_TEST(FrmEdit, OthersChangesAreToldOrAskedAbout) {
  const struct {
    const char* theirs;
    std::vector<std::int32_t> answers;
    const char* after;
    bool is_closed;
    std::size_t messages;
  } rows[] = {
      {"[A]\nPattern=p\nInclude=t\n", {}, "[A]\nPattern=mine\nInclude=t\n", true, 1},
      {"[A]\nPattern=t\n", {kAnswerYes}, "[A]\nPattern=mine\n", true, 1},
      {"[A]\nPattern=t\n", {kAnswerNo}, "[A]\nPattern=t\n", true, 1},
      {"[A]\nPattern=t\n", {kAnswerCancel}, "[A]\nPattern=t\n", false, 1},
      {"[A]\nPattern=mine\n", {}, "[A]\nPattern=mine\n", true, 0},
      {"[B]\nPattern=p\n", {kAnswerYes}, "[B]\nPattern=p\n[A]\nPattern=mine\n", true, 1},
      {"[B]\nPattern=p\n", {kAnswerNo}, "[B]\nPattern=p\n", false, 1},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(&row - rows);
    test::Settings settings("[A]\nPattern=p\n");
    EditWindow edit(settings);
    edit.Type("Pattern", "mine");
    edit.OthersWrite(row.theirs);
    edit.answers = row.answers;
    edit.Click("cmd.OK");
    EXPECT_EQ(edit.Items(), row.after);
    EXPECT_EQ(edit.window->isVisible(), !row.is_closed);
    EXPECT_EQ(edit.messages.size(), row.messages);
  }
}

// What changes while the user answers is asked about, too; what he has settled is shown, whatever he leaves
// open.
GTEST_TEST(FrmEdit, AnswersAreNotOutrun) {
  test::Settings settings("[A]\nPattern=p\n");
  EditWindow edit(settings);
  edit.Type("Pattern", "mine");
  edit.Type("Include", "mine");
  edit.OthersWrite("[A]\nPattern=t\n");
  edit.answers = {kAnswerYes, kAnswerNo, kAnswerCancel};
  edit.on_message = [&] { edit.OthersWrite("[A]\nPattern=later\nInclude=t\n"); };
  edit.Click("cmd.OK");
  EXPECT_EQ(edit.messages.size(), 3U);
  EXPECT_EQ(edit.Items(), "[A]\nPattern=later\nInclude=t\n");
  EXPECT_EQ(edit.Field("Pattern"), "later");
  EXPECT_EQ(edit.Field("Include"), "mine");
}

GTEST_TEST(FrmEdit, FailedWriteKeepsEverything) {
  test::Settings settings("");
  EditWindow edit(settings, EditMode::kGeneral);
  edit.Type("FILER", "f");
  const std::string folder = settings.folder.path();
  fs::remove_all(folder);
  WriteFile(folder, "a file in the place of the folder");
  edit.Press(Qt::Key_Return);
  EXPECT_TRUE(edit.window->isVisible());
  EXPECT_NE(edit.messages.at(0).find("/mover.ini\r\nフォルダではありません"), std::string::npos);
  fs::remove(folder);
  fs::create_directory(folder);
  edit.Press(Qt::Key_Return);
  EXPECT_EQ(settings.standard.FILER(), "f");
}

GTEST_TEST(FrmEdit, TabGoesFromTopToBottom) {
  test::Settings settings("[A]\nID=1\n");
  EditWindow edit(settings);
  QStringList visited;
  while (!visited.contains(edit.window->focusWidget()->objectName())) {
    visited += edit.window->focusWidget()->objectName();
    edit.Press(Qt::Key_Tab);
  }
  EXPECT_EQ(
      FromQt(visited.join(' ')),
      "txt.Pattern cmd.Propose cmd.Test chk.ID chk.Action.1 chk.Action.2 chk.Action.4 opt.SmartRename.1 "
      "opt.ExtractType.1 chk.SmartMakeDir chk.OpenDir txt.ExtractTo cmd.ExtractTo txt.MoveTo cmd.MoveTo "
      "txt.CopyTo cmd.CopyTo txt.Include txt.Exclude txt.OpenFile cmd.OK cmd.Cancel");
}

GTEST_TEST(FrmEdit, FitsSmallScreensAndKeyboards) {
  static const QRegularExpression mnemonic("&(.)");
  test::Settings settings("[A]\nPattern=a(\nMoveTo=r\nCopyTo=r\nExtractTo=r\n", "", "[General]\n");
  for (const EditMode mode : kModes) {
    const EditWindow edit(settings, mode);
    EXPECT_LE(edit.window->minimumSizeHint().width(), 1024);
    EXPECT_LE(edit.window->minimumSizeHint().height(), 600 - 30);
    std::set<QString> letters;
    for (auto* control : edit.window->findChildren<QWidget*>()) {
      const QString caption = control->property("text").toString();
      const QString letter = mnemonic.match(caption).captured(1);
      EXPECT_TRUE(letter.isEmpty() || letters.insert(letter).second)
          << test::EditorCall(mode, FromQt(caption));
    }
  }
}

}  // namespace
}  // namespace quendle
