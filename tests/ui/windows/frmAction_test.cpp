#include "ui/windows/frmAction.h"

#include <QtWidgets>

#include "ui/windows/action_window.h"

namespace quendle {
namespace {

using test::ActionWindow;

// Three profiles, of which all match "*.all", two "*.two", one "*.one". The first one extracts.
const std::string kItems =
    "[A]\nPattern=.*\\.(all)\nID=1\nAction=1\nExtractTo=/a\nInclude=*.txt\nExclude=<b>x</b>\n"
    "[B]\nPattern=.*\\.(all|two)\nID=1\nAction=6\nMoveTo=/b\nCopyTo=/bc\nSmartRename=1\n"
    "[C]\nPattern=.*\\.(all|two|one)\nID=1\nAction=0\n";

std::string MovingTo(const std::string& folder) {
  return "[M]\nPattern=.*\nID=1\nAction=2\nSmartRename=1\nMoveTo=" + folder + "\n";
}

GTEST_TEST(FrmAction, KeysAreTheWindowsAlsoInAField) {
  ActionWindow opened(kItems, {"a.all", "b.one"}, 1);
  opened.txt(1)->setFocus();
  opened.Press(Qt::Key_1, Qt::ControlModifier);
  EXPECT_FALSE(opened.chk(0)->isChecked());
  opened.Press(Qt::Key_1, Qt::ControlModifier | Qt::KeypadModifier);
  EXPECT_TRUE(opened.chk(0)->isChecked());
  EXPECT_EQ(opened.window->focusWidget(), opened.txt(1));
  EXPECT_EQ(opened.txt(1)->selectedText(), "/a");
  opened.Press(Qt::Key_2, Qt::ControlModifier);
  EXPECT_EQ(opened.window->focusWidget(), opened.txt(2));
  opened.Press(Qt::Key_3, Qt::ControlModifier);
  EXPECT_EQ(opened.window->focusWidget(), opened.txt(3));
  EXPECT_EQ(opened.run.mover->ACTION, 7);
  opened.Press(Qt::Key_4, Qt::ControlModifier);
  EXPECT_EQ(opened.run.mover->ACTION, 7);
  opened.Press(Qt::Key_U, Qt::ControlModifier);
  ASSERT_NE(QApplication::activePopupWidget(), nullptr);
  QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_T);
  EXPECT_EQ(opened.edited, std::vector<std::string>{"general|"});
  EXPECT_FALSE(opened.txt(3)->text().isEmpty());  // Ctrl+U has cleared nothing
}

GTEST_TEST(FrmAction, KeysThatEndAPath) {
  const struct {
    const char* name;
    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
    const char* focus;
    bool executes, ends_run;
  } rows[] = {
      {"Ctrl+Return", Qt::Key_Return, Qt::ControlModifier, "txt(2)", true, false},
      {"Ctrl+Enter", Qt::Key_Enter, Qt::ControlModifier, "cmd(0)", true, false},
      {"Return in a field", Qt::Key_Return, Qt::NoModifier, "txt(2)", true, false},
      {"Return on a check box", Qt::Key_Return, Qt::NoModifier, "chk(2)", true, false},
      {"Return on a combo box", Qt::Key_Return, Qt::NoModifier, "cbo(1)", true, false},
      {"Return on Cancel", Qt::Key_Return, Qt::NoModifier, "cmd(0)", false, false},
      {"Esc", Qt::Key_Escape, Qt::NoModifier, "txt(2)", false, false},
      {"Ctrl+W", Qt::Key_W, Qt::ControlModifier, "txt(2)", false, true},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const test::TempFolder to;
    ActionWindow opened(MovingTo(to.path()), {"a.txt", "b.txt", "c.txt"});
    opened.Get<QWidget>(row.focus)->setFocus();
    opened.Press(row.key, row.modifiers);
    EXPECT_EQ(fs::exists(to / "a.txt"), row.executes);
    EXPECT_EQ(opened.window->isVisible(), !row.ends_run);
    EXPECT_EQ(opened.form->Undone().size(), row.ends_run ? 3U : row.executes ? 0U : 1U);
    EXPECT_EQ(opened.window->windowTitle(), row.ends_run ? "1/3 - M" : "2/3 - M");
  }
}

GTEST_TEST(FrmAction, AHeldKeyEndsNoPath) {
  ActionWindow opened(MovingTo("/m"), {"a.txt", "b.txt"});
  const struct {
    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
    quint64 pressed_again;  // milliseconds after it was let go
    const char* title;
    bool is_ticked;
  } rows[] = {{Qt::Key_Return, Qt::NoModifier, 0, "1/2 - M", true},
              {Qt::Key_Escape, Qt::NoModifier, 0, "1/2 - M", true},
              {Qt::Key_Return, Qt::ControlModifier, 0, "1/2 - M", true},
              {Qt::Key_2, Qt::ControlModifier, 0, "1/2 - M", true},
              {Qt::Key_2, Qt::ControlModifier, 60, "1/2 - M", false},
              {Qt::Key_Escape, Qt::NoModifier, 60, "2/2 - M", true}};
  quint64 now = 1000;
  for (const auto& row : rows) {
    SCOPED_TRACE(row.key);
    // As an X server sends it, without a mark that it is a repetition.
    QKeyEvent release(QEvent::KeyRelease, row.key, row.modifiers);
    QKeyEvent press(QEvent::KeyPress, row.key, row.modifiers);
    release.setTimestamp(now += 500);
    press.setTimestamp(now += row.pressed_again);
    for (QKeyEvent* event : {&release, &press}) QApplication::sendEvent(opened.window->windowHandle(), event);
    EXPECT_EQ(opened.window->windowTitle(), row.title);
    EXPECT_EQ(opened.chk(1)->isChecked(), row.is_ticked);
  }
}

GTEST_TEST(FrmAction, MnemonicsReachTheirControls) {
  ActionWindow opened(kItems, {"a.all"}, 1);
  const std::pair<Qt::Key, const char*> rows[] = {{Qt::Key_N, "cbo(1)"}, {Qt::Key_P, "cbo(0)"}};
  opened.Press(Qt::Key_2, Qt::AltModifier);  // so that the rename mode can be chosen
  QTRY_VERIFY(opened.chk(1)->isChecked());
  for (const auto& [key, focus] : rows) {
    opened.cmd(1)->setFocus();
    opened.Press(key, Qt::AltModifier);
    EXPECT_EQ(opened.window->focusWidget()->objectName(), focus);
  }
  opened.Press(Qt::Key_X, Qt::AltModifier);
  QTRY_COMPARE(opened.asked.size(), 1U);
  opened.Press(Qt::Key_R, Qt::AltModifier);
  QTRY_COMPARE(opened.run.mover->EXTRACTTYPE, 2);
  opened.Press(Qt::Key_A, Qt::AltModifier);
  QTRY_VERIFY(opened.run.mover->SMARTMAKEDIR);
  // Letters that a menu has, too: the menu first, the control when it is pressed again.
  const struct {
    Qt::Key key;
    int menu;
    const char* focus;
  } shared[] = {{Qt::Key_F, 0, "chk(4)"}, {Qt::Key_E, 1, "cmd(2)"}, {Qt::Key_O, 2, "opt(0)"}};
  for (const auto& row : shared) {
    SCOPED_TRACE(row.focus);
    opened.cbo(0)->setFocus();
    opened.Press(row.key, Qt::AltModifier);
    QWidget* menu = QApplication::activePopupWidget();
    ASSERT_NE(menu, nullptr);
    QTest::keyClick(menu, Qt::Key_Escape);
    if (opened.window->focusWidget() != opened.cbo(0)) opened.Press(Qt::Key_Escape);  // leaves the menu bar
    EXPECT_TRUE(opened.window->isVisible());
    opened.Press(row.key, Qt::AltModifier);
    EXPECT_EQ(opened.window->focusWidget()->objectName(), row.focus);
  }
}

GTEST_TEST(FrmAction, LabelsAreClicked) {
  ActionWindow opened(kItems, {"a.two"});
  opened.Click(opened.lbl(1));  // no archive
  EXPECT_FALSE(opened.chk(0)->isChecked());
  opened.Click(opened.lbl(2));
  EXPECT_EQ(opened.run.mover->ACTION, 4);
  opened.Click(opened.lbl(2));
  EXPECT_EQ(opened.run.mover->ACTION, 6);
  EXPECT_EQ(opened.window->focusWidget(), opened.txt(2));
  opened.Click(opened.lbl(4));
  EXPECT_EQ(opened.window->focusWidget(), opened.cbo(1));
  for (const int index : {0, 5}) opened.Click(opened.lbl(index));
  EXPECT_EQ(opened.window->focusWidget(), opened.cbo(1));
  EXPECT_EQ(opened.run.mover->ACTION, 6);
}

GTEST_TEST(FrmAction, ControlsShowTheView) {
  ActionWindow opened(kItems, {"a.all"}, 1);
  EXPECT_EQ(opened.window->windowTitle(), "1/1 - A");
  EXPECT_EQ(opened.cbo(0)->itemText(2), "C 【3/3】");
  EXPECT_EQ(opened.window->focusWidget(), opened.cbo(0));
  EXPECT_EQ(FromQt(opened.txt(0)->text()), opened.files / "a.all");
  EXPECT_EQ(opened.txt(1)->text(), "/a");
  EXPECT_TRUE(opened.txt(1)->isEnabled());
  EXPECT_FALSE(opened.txt(2)->isEnabled());
  EXPECT_FALSE(opened.cbo(1)->isEnabled());
  EXPECT_TRUE(opened.lbl(6)->isVisible());
  EXPECT_EQ(opened.lbl(6)->toolTip(), "*.txt");
  EXPECT_TRUE(opened.lbl(7)->toolTip().contains("&lt;b&gt;"));
  EXPECT_FALSE(opened.lbl(8)->isVisible());
  opened.Click(opened.chk(0));
  EXPECT_FALSE(opened.lbl(6)->isVisible());
  EXPECT_FALSE(opened.chk(3)->isEnabled());

  opened.Trigger("mnuEdit(1)");
  EXPECT_EQ(opened.cbo(0)->currentIndex(), 2);
  EXPECT_EQ(opened.window->windowTitle(), "1/1 - C");
  opened.Trigger("mnuEdit(0)");
  opened.cbo(0)->setFocus();
  opened.Press(Qt::Key_Down);
  EXPECT_EQ(opened.window->windowTitle(), "1/1 - B");
  EXPECT_EQ(opened.txt(3)->text(), "/bc/a.all");
  EXPECT_TRUE(opened.cbo(1)->isEnabled());
  opened.cbo(1)->setFocus();
  opened.Press(Qt::Key_End);
  EXPECT_EQ(opened.run.mover->SMARTRENAME, 3);
  opened.Trigger("mnuEdit(26)");
  EXPECT_EQ(opened.cbo(1)->currentIndex(), 0);
  EXPECT_EQ(opened.run.mover->SMARTRENAME, 1);
}

GTEST_TEST(FrmAction, FolderHasNoExtraction) {
  ActionWindow opened(kItems, {"d/", "a.all", "e/"}, 1);
  const int full_height = [] { return ActionWindow(kItems, {"a.all"}, 1).window->height(); }();
  EXPECT_EQ(opened.window->windowTitle(), "1/3 - フォルダ");
  for (const char* name : {"fra(1)", "fra(2)", "lbl(1)", "chk(0)", "txt(1)", "cmd(3)", "cmd(2)"}) {
    EXPECT_FALSE(opened.Get<QWidget>(name)->isVisible()) << name;
  }
  EXPECT_FALSE(opened.Get<QAction>("mnuEdit(11)")->isVisible());
  const int height = opened.window->height();
  EXPECT_LT(height, full_height);
  const int lower_edge = opened.window->screen()->availableGeometry().bottom();
  opened.window->move(0, lower_edge - height);
  opened.Press(Qt::Key_1, Qt::ControlModifier);
  EXPECT_EQ(opened.run.mover->ACTION & 1, 0);
  opened.Click(opened.cmd(0));
  EXPECT_EQ(opened.window->windowTitle(), "2/3 - A");
  EXPECT_TRUE(opened.chk(0)->isVisible());
  EXPECT_EQ(opened.window->height(), full_height);
  EXPECT_LE(opened.window->frameGeometry().bottom(), lower_edge);
  opened.Click(opened.cmd(0));
  EXPECT_EQ(opened.window->height(), height);
}

GTEST_TEST(FrmAction, NothingElseBeginsWhileAPathIsDone) {
  const test::TempFolder to("/dev/shm");  // elsewhere, so that the move copies and tells how far it is
  ActionWindow opened(MovingTo(to.path()), {"a.txt", "b.txt", "c.txt"});
  int reports = 0;
  opened.run.user.has_windows = true;
  opened.run.user.on_progress = [&](const platform::FileProgress&) {
    ++reports;
    EXPECT_FALSE(opened.cmd(1)->isEnabled());
    EXPECT_TRUE(opened.window->isVisible());
    EXPECT_FALSE(opened.window->close());
    opened.Press(Qt::Key_Return, Qt::ControlModifier);
    opened.Press(Qt::Key_W, Qt::ControlModifier);
    // What waits in the queue then is not for the next path either.
    QApplication::postEvent(opened.window.get(),
                            new QKeyEvent(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier));
    return true;
  };
  opened.Click(opened.cmd(1));
  QTest::mouseDClick(opened.cmd(1), Qt::LeftButton);  // the second click of the two
  QTest::mouseRelease(opened.cmd(1), Qt::LeftButton);
  EXPECT_GT(reports, 0);
  QTest::qWait(10);
  EXPECT_EQ(opened.window->windowTitle(), "2/3 - M");
  EXPECT_TRUE(opened.cmd(1)->isEnabled());
  EXPECT_TRUE(opened.form->Undone().empty());
}

GTEST_TEST(FrmAction, ChangedProfileStays) {
  ActionWindow opened(MovingTo("/m"), {"a.txt"});
  test::WriteFile(opened.run.settings.profiles.FileName(), "[N]\nPattern=.*\nID=1\nAction=4\nCopyTo=/n\n");
  opened.Click(opened.cmd(1));
  EXPECT_EQ(opened.run.user.messages.size(), 1U);
  EXPECT_TRUE(opened.window->isVisible());
  EXPECT_EQ(opened.window->windowTitle(), "1/1 - N");
  EXPECT_TRUE(opened.txt(3)->isEnabled());
  EXPECT_TRUE(opened.window->close());
  EXPECT_EQ(opened.form->Undone().size(), 1U);
}

GTEST_TEST(FrmAction, FoldersArePicked) {
  ActionWindow opened(kItems, {"a.two"});
  opened.Click(opened.cmd(4));
  EXPECT_EQ(opened.asked, std::vector<std::string>{"移動先のフォルダを指定してください。|/b/"});
  EXPECT_EQ(opened.txt(2)->text(), "/b/a.two");
  EXPECT_EQ(opened.window->focusWidget(), opened.txt(2));
  opened.picked = "/new\nline";
  opened.Click(opened.cmd(4));
  EXPECT_EQ(opened.txt(2)->text(), "/new\\nline/a.two");
  EXPECT_EQ(opened.run.mover->MOVETO, "/new\nline/a.two");
}

GTEST_TEST(FrmAction, ProfilesAreMadeAndEdited) {
  ActionWindow opened(kItems, {"a.none"});
  EXPECT_EQ(opened.cmd(2)->text(), "新規作成(&E)");
  opened.Click(opened.cmd(2));              // no name
  opened.titles.typed = {"b", "（なし）"};  // taken, and what stands for no profile
  opened.Click(opened.cmd(2));
  EXPECT_EQ(opened.titles.proposed, (std::vector<std::string>{"", "", "b", "（なし）"}));
  ASSERT_EQ(opened.messages.size(), 2U);
  EXPECT_EQ(opened.messages[0], "16|同名のプロファイルが既に存在します。");
  EXPECT_TRUE(opened.edited.empty());
  opened.titles.typed = {"New"};
  opened.Trigger("mnuEdit(11)");
  EXPECT_EQ(opened.edited, std::vector<std::string>{"new|New"});
  EXPECT_EQ(opened.cmd(2)->text(), "新規作成(&E)");
  opened.on_edit = [&opened] {
    const std::string file = opened.run.settings.profiles.FileName();
    test::WriteFile(file, test::ReadFile(file) + "\n[New]\nPattern=.*none\n");
    return "New";
  };
  opened.titles.typed = {"New"};
  opened.Click(opened.cmd(2));
  EXPECT_EQ(opened.window->windowTitle(), "1/1 - New");
  EXPECT_EQ(opened.Get<QAction>("mnuEdit(11)")->text(), "プロファイルを編集(&E)");
  opened.on_edit = nullptr;
  opened.edited.clear();
  opened.Click(opened.cmd(2));
  for (const char* name : {"mnuOption(0)", "mnuOption(1)", "mnuOption(6)", "mnuAbout(0)"})
    opened.Trigger(name);
  EXPECT_EQ(opened.edited, (std::vector<std::string>{"profile|New", "standard|", "test|", "general|"}));
  EXPECT_EQ(opened.asked.back(), "about");
}

GTEST_TEST(FrmAction, WhatIsThrownComesOutOfTheWindow) {
  ActionWindow opened("[a]\nPattern=.*\nID=1\nAction=1\nExtractTo=/x\n", {"a.zip", "b.zip"}, 1);
  opened.run.archiver->throws = true;
  QTimer::singleShot(0, [&opened] { opened.Press(Qt::Key_Return, Qt::ControlModifier); });
  EXPECT_THROW(opened.window->Run(), std::runtime_error);
  EXPECT_FALSE(opened.window->isVisible());
}

GTEST_TEST(FrmAction, PlanFollowsWhatIsChosen) {
  const test::TempFolder to;
  ActionWindow opened(MovingTo(to.path()), {"a.txt"});
  EXPECT_EQ(opened.Plan(), "移動 → " + to / "a.txt");
  {
    QWidget other;
    other.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    test::WriteFile(to / "a.txt", "taken");
  }
  opened.window->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(opened.window.get()));
  const std::string asks = "移動 → " + to / "a.txt（同じ名前のものがあるため、上書きするか確認します）";
  EXPECT_EQ(opened.Plan(), asks);
  opened.Click(opened.chk(2));
  EXPECT_EQ(opened.Plan(), "コピー → /standard/a.txt\n" + asks);
  opened.Click(opened.chk(2));
  opened.txt(2)->setFocus();
  opened.txt(2)->clear();
  QTest::keyClicks(opened.txt(2), "relative");
  EXPECT_EQ(opened.Plan().rfind("移動 → relative（", 0), 0U);
  opened.Press(Qt::Key_2, Qt::ControlModifier);
  EXPECT_EQ(opened.Plan(), "何もしません。");
}

GTEST_TEST(FrmAction, LargeArchivesAreNotListedAtEachKey) {
  ActionWindow opened(kItems, {"a.all"}, 1);
  opened.run.archiver->plan.all = 12;
  opened.run.archiver->plan.chosen = 3;
  opened.run.archiver->plan.replaces.emplace();
  opened.Click(opened.chk(4));
  EXPECT_EQ(opened.Plan(), "解凍 → /a（12 個中 3 個）");
  opened.run.archiver->plan.chosen = 4;
  opened.txt(1)->setFocus();
  QElapsedTimer typing;
  typing.start();
  QTest::keyClicks(opened.txt(1), "/b", Qt::NoModifier, 20);
  const std::string shown = opened.ShownPlan();
  if (typing.elapsed() < 150) {  // else the machine has made the pause
    EXPECT_EQ(shown, "解凍 → /a（12 個中 3 個）");
  }
  EXPECT_EQ(opened.Plan(), "解凍 → /b（12 個中 4 個）");
}

}  // namespace
}  // namespace quendle
