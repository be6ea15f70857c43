#include "ui/parts/pickers.h"

#include <QtWidgets>

#include "support/temp_folder.h"
#include "ui/modal.h"

namespace quendle {
namespace {

// Types the name into the dialog and presses Enter; answers a question that follows.
class Typist {
 public:
  explicit Typist(const QString& name, const QString& answer = "OK")
      : modal_([this, name, answer](QWidget& window) {
          if (auto* question = qobject_cast<QMessageBox*>(&window)) {
            ++questions;
            test::Click(*question, answer);
            return;
          }
          auto* dialog = qobject_cast<QFileDialog*>(&window);
          ASSERT_NE(dialog, nullptr);
          folder = dialog->directory().path();
          filters = dialog->nameFilters();
          title = dialog->windowTitle();
          auto* box = dialog->findChild<QLineEdit*>("fileNameEdit");
          proposed = box->text();
          if (name.isEmpty()) {
            QTest::keyClick(dialog, Qt::Key_Escape);
            return;
          }
          // Names count once the dialog has read the folder, which it does in a thread of its own.
          auto* model = dialog->findChild<QFileSystemModel*>();
          const auto is_read = [&] { return model->rowCount(model->index(folder)) > 0; };
          // Qt 6.8 lists nothing of a folder with a name that is no UTF-8.
          if (name.contains(QChar(0xFFFD))) {
            (void)QTest::qWaitFor(is_read, 1000);
          } else {
            EXPECT_TRUE(QTest::qWaitFor(is_read, kPatience));
          }
          box->setText(name);
          QTest::keyClick(box, Qt::Key_Return);
          if (dialog->isVisible()) dialog->reject();  // the name was not taken
        }) {}

  static constexpr int kPatience = 30'000;  // milliseconds

  int questions = 0;
  QString folder;
  QString title;
  QString proposed;
  QStringList filters;

 private:
  test::WithModal modal_;
};

GTEST_TEST(Pickers, PicksExistingFoldersOnly) {
  const test::TempFolder folder;
  fs::create_directories(folder / "資料");
  fs::create_directories(folder / "b\xFF");
  const struct {
    QString typed;
    std::string proposed, begins_in, picked;
  } rows[] = {
      {"資料", folder / "none/at/all", folder.path(), folder / "資料"},
      {"", folder.path(), folder.path(), ""},
      {"none", folder.path(), folder.path(), ""},
      {"b\uFFFD", folder / "b\xFF", folder.path(), ""},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.typed.toStdString());
    const Typist typist(row.typed);
    EXPECT_EQ(PickFolder(nullptr, "解凍先", row.proposed), row.picked);
    EXPECT_EQ(typist.folder.toStdString(), row.begins_in);
    EXPECT_EQ(typist.title, "解凍先");
  }
}

GTEST_TEST(Pickers, PicksFiles) {
  const test::TempFolder folder;
  const test::TempFolder odd_folder;
  test::WriteFile(folder / "a.txt", "a");
  test::WriteFile(odd_folder / "b\xFF.txt", "b");
  const struct {
    QString typed;
    QString answer;
    std::string picked;
    int questions;
    bool open;
  } rows[] = {
      {"a.txt", "", folder / "a.txt", 0, true},
      {"c.txt", "OK", "", 1, true},
      {"b\uFFFD.txt", "OK", "", 1, true},
      {"c.txt", "", folder / "c.txt", 0, false},
      {"a.txt", "No", "", 1, false},
      {"a.txt", "Yes", folder / "a.txt", 1, false},
      {"", "", "", 0, false},
      {"b\uFFFD.txt", "", "", 0, false},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.typed.toStdString() + (row.open ? ", open" : ", save"));
    const Typist typist(row.typed, row.answer);
    const std::string& begins_in = row.typed.contains(QChar(0xFFFD)) ? odd_folder.path() : folder.path();
    FileDialogRequest request{
        "題", {{"文書 (*.txt)", "*.txt;*.doc"}, {"すべて", "*.*"}}, row.open, begins_in, "p.txt"};
    EXPECT_EQ(ShowFileDialog(nullptr, request), row.picked);
    EXPECT_EQ(typist.questions, row.questions);
    EXPECT_EQ(typist.folder.toStdString(), begins_in);
    EXPECT_EQ(typist.proposed, "p.txt");
    EXPECT_EQ(typist.filters, QStringList({"文書 (*.txt) (*.txt *.doc)", "すべて (*)"}));
  }
}

}  // namespace
}  // namespace quendle
