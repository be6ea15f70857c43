#include "ui/windows/frmMain.h"

#include <QTest>
#include <QtWidgets>
#include <algorithm>
#include <memory>

#include "core/modMain.h"
#include "support/settings.h"
#include "ui/parts/text.h"
#include "ui/windows/editor_calls.h"

namespace quendle {
namespace {

const std::string kItems =
    "[b]\nPattern=.*\\.zip\nID=1\nAction=3\nExtractTo=/x\nMoveTo=/no/such\n"
    "[A]\nPattern=.*\\.(zip|lzh)\nID=0\nCopyTo=/own\n"
    "[c]\nPattern=(\nID=1\nAction=0\n";

// The list over a store of its own, with scripted answers.
class MainWindow {
 public:
  explicit MainWindow(const std::string& items = kItems)
      : settings(items, "[General]\nAction=4\nCopyTo=/std\nMoveTo=/stdmove\n") {
    MainServices services;
    services.show_message = [this](const std::string& text, std::int32_t, std::int32_t, const std::string&) {
      messages.push_back(text);
      return answer;
    };
    services.show_input = asked_titles.Answering();
    services.open_editor = [this](QWidget*, EditMode mode, const std::string& title) {
      edited.push_back(test::EditorCall(mode, title));
      const std::string file = settings.profiles.FileName();
      if (mode == EditMode::kNew)
        test::WriteFile(file, test::ReadFile(file) + "[" + title + "]\nPattern=new\n");
      return std::optional(title);
    };
    services.open_tester = [this](QWidget*, const std::string& pattern, const std::string& name) {
      opened.push_back(pattern + "|" + name);
    };
    services.show_about = [this](QWidget*) { opened.emplace_back("about"); };
    services.show_in_file_manager = [this](const std::string& folder) {
      opened.push_back(folder);
      return platform::Success();
    };
    services.dispatch = [this](const std::vector<std::string>& paths) {
      dispatched = paths;
      EXPECT_FALSE(view->isEnabled());
      window->close();
      EXPECT_TRUE(window->isVisible());
      if (on_dispatch) on_dispatch();
    };
    services.take_left = [this] { return std::exchange(left, {}); };
    window = std::make_unique<frmMain>(settings.profiles, settings.standard, services,
                                       settings.folder / "w/w.ini");
    window->show();
    EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
    view = window->findChild<QTreeView*>("list");
    filter = window->findChild<QLineEdit*>("filter");
    test = window->findChild<QLineEdit*>("test");
  }

  std::string Cell(int row, int column) const {
    return FromQt(view->model()->index(row, column).data().toString());
  }
  std::string Column(int column = 0) const {
    std::string cells;
    for (int row = 0; row < view->model()->rowCount(); ++row)
      cells.append(row == 0 ? "" : ";").append(Cell(row, column));
    return cells;
  }
  std::string Selected() const {
    std::string titles;
    for (const QModelIndex& index : view->selectionModel()->selectedRows()) {
      titles.append(titles.empty() ? "" : ";").append(FromQt(index.data().toString()));
    }
    return titles;
  }
  void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const {
    QWidget* focus = window->focusWidget();
    QTest::keyClick(focus == nullptr ? window.get() : focus, key, modifiers);
  }
  void ClickRow(int row, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const {
    const QPoint place = view->visualRect(view->model()->index(row, 0)).center();
    QTest::mouseClick(view->viewport(), Qt::LeftButton, modifiers, place);
  }
  // As the desktop sends it: to the window, which looks for the control under the pointer. True when it is taken.
  bool Drop(const QWidget* target, const QList<QUrl>& urls) const {
    QMimeData data;
    data.setUrls(urls);
    const QPoint place = target->mapTo(window.get(), target->rect().center());
    const Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction;
    QDragEnterEvent enter(place, actions, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window->windowHandle(), &enter);
    QDropEvent drop(place, actions, &data, Qt::LeftButton, Qt::NoModifier);
    drop.setDropAction(Qt::MoveAction);  // after which the other program would remove the files
    QCoreApplication::sendEvent(window->windowHandle(), &drop);
    EXPECT_EQ(enter.isAccepted(), drop.isAccepted());
    for (const QDropEvent* event : {static_cast<QDropEvent*>(&enter), &drop}) {
      EXPECT_TRUE(!event->isAccepted() || event->dropAction() == Qt::CopyAction);
    }
    QTest::qWait(1);
    return enter.isAccepted();
  }

  test::Settings settings;
  std::vector<std::string> messages, edited, opened, dispatched;
  test::TypedTitles asked_titles;
  platform::LeftPaths left;
  std::int32_t answer = kAnswerYes;
  std::function<void()> on_dispatch;
  std::unique_ptr<frmMain> window;
  QTreeView* view = nullptr;
  QLineEdit* filter = nullptr;
  QLineEdit* test = nullptr;
};

// Rows in order: A (inherits 4: copy), b (extract and move), c (a broken pattern, does nothing).
GTEST_TEST(FrmMain, ShowsWhatProfilesDo) {
  const MainWindow main;
  EXPECT_EQ(main.window->windowTitle(), ToQt("Quendle " + GetVersionString()));
  EXPECT_EQ(main.Column(ProfileModel::kTitle), "A;b;c");
  EXPECT_EQ(main.Column(ProfileModel::kPattern), ".*\\.(zip|lzh);.*\\.zip;(");
  EXPECT_EQ(main.Column(ProfileModel::kAction), "コピー;解凍・移動;何もしない");
  EXPECT_EQ(main.Column(ProfileModel::kExtractFolder), ";/x;");
  EXPECT_EQ(main.Column(ProfileModel::kMoveFolder), ";/no/such;");
  EXPECT_EQ(main.Column(ProfileModel::kCopyFolder), "/own;;");
  const QAbstractItemModel& model = *main.view->model();
  EXPECT_TRUE(model.index(0, ProfileModel::kAction).data(Qt::ForegroundRole).isValid());
  EXPECT_FALSE(model.index(0, ProfileModel::kCopyFolder).data(Qt::ForegroundRole).isValid());
  EXPECT_FALSE(model.index(1, ProfileModel::kAction).data(Qt::ForegroundRole).isValid());
}

GTEST_TEST(FrmMain, KeysAndClicksReachTheirCommands) {
  using Act = std::function<void(MainWindow&)>;
  const auto key = [](Qt::Key pressed, Qt::KeyboardModifiers modifiers = Qt::NoModifier) -> Act {
    return [=](const MainWindow& m) { m.Press(pressed, modifiers); };
  };
  const auto trigger = [](const char* action) -> Act {
    return [=](const MainWindow& m) { m.window->findChild<QAction*>(action)->trigger(); };
  };
  const struct {
    const char* name;
    Act act;
    std::string edited, opened;
  } rows[] = {
      {"Return", key(Qt::Key_Return), "profile|b", ""},
      {"Enter of the number pad", key(Qt::Key_Enter, Qt::KeypadModifier), "profile|b", ""},
      {"double click",
       [](MainWindow& m) {
         m.ClickRow(2);
         const QPoint place = m.view->visualRect(m.view->model()->index(2, 0)).center();
         QTest::mouseDClick(m.view->viewport(), Qt::LeftButton, Qt::NoModifier, place);
       },
       "profile|c", ""},
      {"Ctrl+N", key(Qt::Key_N, Qt::ControlModifier), "new|new", ""},
      {"Ins", key(Qt::Key_Insert), "new|new", ""},
      {"standard settings", trigger("standard"), "standard|", ""},
      {"general settings", trigger("general"), "general|", ""},
      {"test settings", trigger("testSettings"), "test|", ""},
      {"about", trigger("about"), "", "about"},
      {"tester", key(Qt::Key_T, Qt::ControlModifier), "", ".*\\.zip|"},
      {"Return with several",
       [](MainWindow& m) {
         m.ClickRow(2, Qt::ControlModifier);
         m.Press(Qt::Key_Return);
       },
       "", ""},
      {"Return in a field",
       [](MainWindow& m) {
         m.Press(Qt::Key_F, Qt::ControlModifier);
         EXPECT_EQ(m.window->focusWidget(), m.filter);
         m.Press(Qt::Key_Return);
         EXPECT_EQ(m.window->focusWidget(), m.view);
       },
       "", ""},
      {"context menu",
       [](MainWindow& m) {
         const QPoint place = m.view->visualRect(m.view->model()->index(1, 0)).center();
         const QPoint on_screen = m.view->viewport()->mapToGlobal(place);
         QContextMenuEvent by_key(QContextMenuEvent::Keyboard, QPoint(), QPoint());
         QCoreApplication::sendEvent(m.view, &by_key);
         ASSERT_NE(QApplication::activePopupWidget(), nullptr);
         EXPECT_LT((QApplication::activePopupWidget()->pos() - on_screen).manhattanLength(), 150);
         QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Escape);
         QContextMenuEvent by_mouse(QContextMenuEvent::Mouse, place, on_screen);
         QCoreApplication::sendEvent(m.view->viewport(), &by_mouse);
         ASSERT_NE(QApplication::activePopupWidget(), nullptr);
         QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Escape);
         m.Press(Qt::Key_F10, Qt::ShiftModifier);
         ASSERT_NE(QApplication::activePopupWidget(), nullptr);
         QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_E);
       },
       "profile|b", ""},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    MainWindow main;
    main.asked_titles.typed = {"new"};
    main.ClickRow(1);
    row.act(main);
    EXPECT_EQ(main.edited, row.edited.empty() ? std::vector<std::string>() : std::vector{row.edited});
    EXPECT_EQ(main.opened, row.opened.empty() ? std::vector<std::string>() : std::vector{row.opened});
  }
}

GTEST_TEST(FrmMain, AddsUnderATitleThatIsFree) {
  MainWindow main;
  main.asked_titles.typed = {"B", "x]", "aa"};
  main.filter->setText("lzh");
  main.Press(Qt::Key_Insert);
  EXPECT_EQ(main.asked_titles.proposed, (std::vector<std::string>{"", "B", "x]"}));
  ASSERT_EQ(main.messages.size(), 2U);
  EXPECT_EQ(main.messages[0], "同名のプロファイルが既に存在します。");
  EXPECT_EQ(main.Column(), "A;aa;b;c");  // the filter would have hidden it
  EXPECT_EQ(main.Selected(), "aa");
  EXPECT_LT(test::ReadFile(main.settings.profiles.FileName()).find("[aa]"),
            test::ReadFile(main.settings.profiles.FileName()).find("[b]"));
}

GTEST_TEST(FrmMain, RenamesAndDuplicates) {
  MainWindow main;
  main.ClickRow(1);
  main.asked_titles.typed = {"a", "B"};
  main.Press(Qt::Key_F2);
  EXPECT_EQ(main.asked_titles.proposed.front(), "b");
  EXPECT_EQ(main.messages.size(), 1U);
  EXPECT_EQ(main.Column(), "A;B;c");
  main.Press(Qt::Key_D, Qt::ControlModifier);
  EXPECT_EQ(main.Column(), "A;B;B (2);c");
  EXPECT_EQ(main.Selected(), "B (2)");
  EXPECT_EQ(main.Column(ProfileModel::kMoveFolder), ";/no/such;/no/such;");
}

GTEST_TEST(FrmMain, RemovesWhatTheUserAgreedTo) {
  MainWindow main;
  main.ClickRow(0);
  main.ClickRow(1, Qt::ShiftModifier);
  main.filter->setText("zip");
  main.filter->setFocus();
  main.Press(Qt::Key_Delete);  // edits the field
  EXPECT_TRUE(main.messages.empty());
  main.view->setFocus();
  main.answer = kAnswerNo;
  main.Press(Qt::Key_Delete);
  ASSERT_EQ(main.messages.size(), 1U);
  EXPECT_TRUE(main.messages[0].ends_with("\r\nA\r\nb")) << main.messages[0];
  EXPECT_EQ(main.Column(), "A;b");
  main.answer = kAnswerYes;
  main.Press(Qt::Key_Delete);
  EXPECT_EQ(main.Column(), "");
  EXPECT_TRUE(main.window->findChild<QLabel*>("hint")->text().contains("zip"));
  main.Press(Qt::Key_Escape);
  EXPECT_EQ(main.Column(), "c");
}

GTEST_TEST(FrmMain, SeesWhatOthersChange) {
  MainWindow main;
  main.ClickRow(1);
  test::WriteFile(main.settings.profiles.FileName(), "[B]\nPattern=theirs\n[n]\n");
  for (const auto& [key, modifier] : {std::pair{Qt::Key_Return, Qt::NoModifier},
                                      {Qt::Key_F2, Qt::NoModifier},
                                      {Qt::Key_D, Qt::ControlModifier},
                                      {Qt::Key_Delete, Qt::NoModifier}}) {
    SCOPED_TRACE(key);
    MainWindow changed;
    changed.filter->setText("/");
    changed.ClickRow(1);
    changed.asked_titles.typed = {"mine"};
    const std::string theirs = "[B]\r\nPattern=theirs\r\n[n]\r\n";
    test::WriteFile(changed.settings.profiles.FileName(), theirs);
    changed.Press(key, modifier);
    EXPECT_EQ(changed.messages.size(), 1U);
    EXPECT_TRUE(changed.edited.empty());
    EXPECT_EQ(test::ReadFile(changed.settings.profiles.FileName()), theirs);
    EXPECT_EQ(changed.Column(), "B;n");
    EXPECT_EQ(changed.filter->text(), "/");
  }
  QWidget other;
  other.show();
  other.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
  EXPECT_EQ(main.Column(), "A;b;c");
  main.window->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(main.window.get()));
  EXPECT_EQ(main.Column(), "B;n");
}

GTEST_TEST(FrmMain, MarksWhatANameMatches) {
  MainWindow main;
  EXPECT_TRUE(main.view->isColumnHidden(ProfileModel::kMatch));
  main.Press(Qt::Key_E, Qt::ControlModifier);
  QTest::keyClicks(main.window->focusWidget(), "x.zip");
  EXPECT_FALSE(main.view->isColumnHidden(ProfileModel::kMatch));
  EXPECT_EQ(main.Cell(0, ProfileModel::kMatch), "一致 1/2");
  EXPECT_EQ(main.Cell(1, ProfileModel::kMatch), "一致 2/2");
  EXPECT_EQ(main.Cell(2, ProfileModel::kMatch), "誤り：1 文字目: 閉じ括弧「)」がありません");
  EXPECT_TRUE(main.Drop(main.test, {QUrl::fromLocalFile("/in/x.lzh.txt")}));
  EXPECT_EQ(main.test->text(), "x.lzh.txt");
  EXPECT_EQ(main.Cell(0, ProfileModel::kMatch), "一部だけに一致");
  EXPECT_EQ(main.Cell(1, ProfileModel::kMatch), "一致しません");
  const QList<QLabel*> labels = main.window->findChildren<QLabel*>();
  const auto label = std::find_if(labels.begin(), labels.end(),
                                  [&main](const QLabel* one) { return one->buddy() == main.test; });
  EXPECT_TRUE(main.Drop(*label, {QUrl::fromLocalFile("/in/near.miss")}));
  EXPECT_EQ(main.test->text(), "near.miss");
  EXPECT_TRUE(main.dispatched.empty());
  main.Press(Qt::Key_Escape);
  EXPECT_TRUE(main.view->isColumnHidden(ProfileModel::kMatch));
}

GTEST_TEST(FrmMain, DispatchesWhatIsDropped) {
  MainWindow main;
  const QUrl text = QUrl::fromEncoded("file:///in/%FF%20a.txt");
  main.on_dispatch = [&main, &text] {
    EXPECT_FALSE(main.Drop(main.view->viewport(), {text}));
    main.settings.profiles.DelSection("c");
  };
  EXPECT_TRUE(main.Drop(main.view->viewport(), {text, QUrl("file://localhost/in/%E8%A1%A8")}));
  EXPECT_EQ(main.dispatched, (std::vector<std::string>{"/in/\xFF a.txt", "/in/表"}));
  EXPECT_TRUE(main.window->isVisible() && main.view->isEnabled());
  EXPECT_EQ(main.Column(), "A;b");
  main.dispatched.clear();
  const QUrl remote("https://example.org/a.txt"), share("file://elsewhere/a.txt"), relative("file:a.txt");
  for (const QList<QUrl>& urls : {QList<QUrl>{remote}, {share}, {relative}, {text, remote}, {}}) {
    EXPECT_FALSE(main.Drop(main.view->viewport(), urls));
  }
  QList<QUrl> many;
  for (int i = 0; i < 12; ++i) many += QUrl::fromLocalFile(QString("/in/%1").arg(i));
  main.answer = kAnswerCancel;
  EXPECT_TRUE(main.Drop(main.filter, many));
  EXPECT_TRUE(main.dispatched.empty());
  main.answer = kAnswerOk;
  EXPECT_TRUE(main.Drop(main.filter, many));
  EXPECT_EQ(main.dispatched.size(), 10U);
  EXPECT_TRUE(main.messages.back().ends_with("\r\n/in/10\r\n/in/11")) << main.messages.back();
}

GTEST_TEST(FrmMain, WhatAnotherCopyHasLeftIsToldUntilTheUserGoesOn) {
  MainWindow main;
  const auto status = [&main] { return FromQt(main.window->findChild<QLabel*>("status")->text()); };
  const std::string usual = status();
  main.left = {{"/in/a", "b", "c"}, 5};
  main.window->TellOfOtherCopy();
  EXPECT_EQ(status(), "処理していません（この一覧にドロップしてください）：/in/a、b、ほか 3 件");
  main.left = {{}, 1};
  main.Press(Qt::Key_F5);
  EXPECT_TRUE(status().ends_with("ほか 4 件")) << status();
  main.test->setText("x");
  main.test->clear();
  EXPECT_EQ(status(), usual);
  main.on_dispatch = [&main] {
    main.left = {{}, 1};
    main.window->TellOfOtherCopy();
    EXPECT_EQ(main.left.count, 1U) << "the run tells it";
    main.left = {};
  };
  EXPECT_TRUE(main.Drop(main.view->viewport(), {QUrl::fromLocalFile("/in/a")}));
  EXPECT_EQ(status(), usual);
}

GTEST_TEST(FrmMain, FailuresAreTold) {
  MainWindow main;
  main.ClickRow(1);
  main.Press(Qt::Key_2, Qt::ControlModifier);
  ASSERT_EQ(main.messages.size(), 1U);
  EXPECT_TRUE(main.messages[0].ends_with("/no/such"));
  fs::remove(main.settings.profiles.FileName());
  fs::create_directory(main.settings.profiles.FileName());
  main.Press(Qt::Key_Delete);
  EXPECT_EQ(main.messages.size(), 3U);  // the question, and why not
  EXPECT_NE(main.messages.back().find(main.settings.profiles.FileName()), std::string::npos);
  EXPECT_TRUE(main.window->findChild<QLabel*>("hint")->text().contains("フォルダです"));
}

GTEST_TEST(FrmMain, RemembersHowItLooked) {
  MainWindow main;
  main.window->setGeometry(50, 60, 500, 300);
  main.view->setColumnWidth(0, 77);
  main.test->setText("a");
  main.view->setColumnWidth(ProfileModel::kMatch, 99);
  main.test->clear();
  main.view->sortByColumn(ProfileModel::kPattern, Qt::DescendingOrder);
  EXPECT_EQ(main.Column(), "b;A;c");
  main.Press(Qt::Key_W, Qt::ControlModifier);
  EXPECT_FALSE(main.window->isVisible());
  const std::string file = main.settings.folder / "w/w.ini";
  {
    frmMain again(main.settings.profiles, main.settings.standard, {}, file);
    const auto* view = again.findChild<QTreeView*>("list");
    again.findChild<QLineEdit*>("test")->setText("a");
    EXPECT_EQ(view->columnWidth(ProfileModel::kMatch), 99);
    EXPECT_EQ(QRect(again.pos(), again.size()), QRect(main.window->pos(), main.window->size()));
    EXPECT_EQ(view->columnWidth(0), 77);
    EXPECT_EQ(FromQt(view->model()->index(0, 0).data().toString()), "b");
  }
  main.window->show();
  main.window->move(30000, 30000);
  main.window->close();
  frmMain elsewhere(main.settings.profiles, main.settings.standard, {}, file);
  EXPECT_LT(elsewhere.pos().x(), 30000);
  EXPECT_EQ(elsewhere.size(), QSize(500, 300));
}

}  // namespace
}  // namespace quendle
