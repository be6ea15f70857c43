// What somebody meets who starts the program for the first time: from the empty list to a file that has been moved.
#include <QtWidgets>

#include "support/scoped_variable.h"
#include "support/scripted_user.h"
#include "support/temp_folder.h"
#include "ui/messages/frmMsgBox.h"
#include "ui/modal.h"
#include "ui/parts/text.h"
#include "ui/windows/frmAction.h"
#include "ui/windows/frmEdit.h"
#include "ui/windows/frmMain.h"

namespace quendle {
namespace {

std::string TextOf(const QWidget& window, const char* name) {
  const auto* control = window.findChild<QWidget*>(name);
  return control == nullptr ? "no such control" : FromQt(control->property("text").toString());
}

class FirstSteps : public testing::Test {
 protected:
  // As the program does with what is dropped; `user_` stands for the questions of a run.
  void Dispatch(const std::vector<std::string>& paths) {
    const RunScope run(globals_, paths);
    globals_.g_Mover->SHOWUSERFORM =
        WantsConfirmation(globals_.g_Mover->Settings().Standard(), [] { return false; });
    ActionForm form({*globals_.g_Mover, *globals_.g_FileInfo, user_}, {});
    if (form.Advance()) frmAction(form, *globals_.g_Mover).Run();
    EXPECT_EQ(form.Undone(), std::vector<std::string>());
  }
  void AddProfile(QWidget* list) {
    QStringList met;
    const test::WithModal modal([&](QWidget& window) {
      met += window.windowTitle();
      if (dynamic_cast<frmMsgBox*>(&window)) {
        QTest::keyClicks(QApplication::focusWidget(), "Reports");
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
      } else if (dynamic_cast<frmEdit*>(&window)) {
        FillIn(window);
      } else if (auto* box = window.findChild<QLineEdit*>("fileNameEdit")) {
        QTest::keyClicks(box, ToQt(file_));
        QTest::keyClick(box, Qt::Key_Return);
      } else {
        EXPECT_EQ(TextOf(window, "txt(1)"), "data.*\\.txt");
        EXPECT_EQ(TextOf(window, "txt(0)"), "data12.txt");
        EXPECT_EQ(TextOf(window, "lbl(0)"), "Match.");
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
      }
    });
    QTest::keyClick(list, Qt::Key_Insert);
    EXPECT_EQ(met, QStringList({"プロファイル追加", "プロファイルの新規作成 - Reports",
                                "パターンのもとにするファイルを選ぶ", "Test Regex"}));
  }
  void FillIn(const QWidget& editor) const {
    test::Click(editor, "提案(G)");
    EXPECT_EQ(TextOf(editor, "txt.Pattern"), "data.*\\.txt");
    test::Click(editor, "試す(T)...");
    for (auto* box : editor.findChildren<QCheckBox*>(QRegularExpression("chk\\.(ID|Action.*)"))) {
      const bool is_wanted = box->objectName() == "chk.ID" || box->text().contains("移動");
      if (box->isChecked() != is_wanted) QTest::mouseClick(box, Qt::LeftButton, {}, {8, box->height() / 2});
      EXPECT_TRUE(box->isChecked() == is_wanted && box->isEnabled()) << FromQt(box->text());
    }
    auto* folder = editor.findChild<QLineEdit*>("txt.MoveTo");
    QTest::mouseClick(folder, Qt::LeftButton);
    QTest::keyClicks(folder, ToQt(files_ / "sorted"));
    test::Click(editor, "OK");
    EXPECT_FALSE(editor.isVisible());
  }
  void TellStory() {
    ASSERT_TRUE(QTest::qWaitFor([] { return QApplication::activeWindow() != nullptr; }));
    QWidget* window = QApplication::activeWindow();
    auto* list = window->findChild<QTreeView*>("list");
    const auto* hint = window->findChild<QLabel*>("hint");
    EXPECT_TRUE(hint->isVisible() && hint->text().contains("［＋ 追加］を押して")) << FromQt(hint->text());
    EXPECT_EQ(QApplication::focusWidget(), list);
    AddProfile(list);

    EXPECT_FALSE(hint->isVisible());
    ASSERT_EQ(list->model()->rowCount(), 1);
    EXPECT_TRUE(list->selectionModel()->isRowSelected(0));
    EXPECT_EQ(list->model()->index(0, ProfileModel::kTitle).data(), "Reports");
    EXPECT_EQ(list->model()->index(0, ProfileModel::kAction).data(), "移動");
    // New settings have everything confirmed.
    const test::WithModal confirmation([this](QWidget& shown) {
      EXPECT_EQ(FromQt(shown.windowTitle()), "1/1 - Reports");
      EXPECT_EQ(TextOf(shown, "txt(2)"), files_ / "sorted/data12.txt");
      EXPECT_TRUE(fs::exists(file_));
      test::Click(shown, "OK");
    });
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(ToQt(file_))});
    const QPoint place = list->mapTo(window, list->rect().center());
    QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window, &enter);
    QDropEvent drop(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window, &drop);
    EXPECT_TRUE(QTest::qWaitFor([&] { return confirmation.windows() == 1 && list->hasFocus(); }));
    EXPECT_FALSE(fs::exists(file_));
    EXPECT_EQ(test::ReadFile(files_ / "sorted/data12.txt"), "text");
    EXPECT_EQ(globals_.g_FileInfo->pFileNameLong(), "") << "the next pattern would be made from it";
    EXPECT_TRUE(window->isVisible() && window->isActiveWindow() && list->isEnabled());
    EXPECT_TRUE(list->selectionModel()->isRowSelected(0));
  }

  test::TempFolder files_;
  test::ScopedVariable state_{"XDG_STATE_HOME", files_ / "state"};
  std::string file_ = files_ / "in/data12.txt";
  test::ScriptedUser user_;
  Globals globals_{{files_ / "settings", files_.path()}, true, user_, "", {}};
};

TEST_F(FirstSteps, LeadFromAnEmptyListToAMovedFile) {
  test::WriteFile(file_, "text");
  fs::create_directory(files_ / "sorted");
  QTimer::singleShot(0, [this] {
    TellStory();
    QApplication::closeAllWindows();
  });
  RunProfileList(
      {globals_, nullptr, [] { return false; }, -1, {}, [this](const auto& paths) { Dispatch(paths); }});
  EXPECT_EQ(user_.messages, std::vector<std::string>());
  EXPECT_EQ(test::ReadFile(files_ / "settings/items.ini"),
            "[Reports]\r\nPattern=data.*\\.txt\r\nID=1\r\nAction=2\r\nSmartRename=3\r\nOpenDir=1\r\nMoveTo=" +
                files_ / "sorted" + "\r\n");
}

TEST_F(FirstSteps, RunsThatGoWrongLeaveNothingBehind) {
  test::WriteFile(file_, "text");
  try {
    const RunScope run(globals_, {file_});
    globals_.g_Mover->CMDLINECURRENT = 1;
    EXPECT_TRUE(globals_.g_Mover->SetTarget().ok());
    EXPECT_EQ(globals_.g_FileInfo->pFileNameLong(), "data12.txt");
    throw std::runtime_error("fault");
  } catch (const std::runtime_error&) {
    EXPECT_TRUE(globals_.g_Mover == nullptr && globals_.g_Output == nullptr);
    EXPECT_EQ(globals_.g_FileInfo->pFileNameLong(), "");
  }
}

}  // namespace
}  // namespace quendle
