#include "ui/parts/form_helpers.h"

#include <QTest>
#include <QtWidgets>

#include "ui/parts/modListBox.h"
#include "ui/parts/pictures.h"

namespace quendle {
namespace {

GTEST_TEST(FormHelpers, FindsEntriesFromBehindTheStartAndRound) {
  const struct {
    std::vector<const char*> entries;
    const char* text;
    int start, found;
  } rows[] = {
      {{"b", "A", "a"}, "A", -1, 1},
      {{"b", "A", "a"}, "A", 1, 2},
      {{"b", "A", "a"}, "a", 2, 1},
      {{"b", "A", "a"}, "B", 0, 0},  // the start itself comes last
      {{"ab", "abc"}, "a", -1, -1},
      {{"ab", "abc"}, "abc", -1, 1},
      {{"Ｒｅｐｏｒｔ", "ж"}, "ｒＥＰＯＲＴ", 0, 0},
      {{""}, "", -1, 0},
      {{}, "a", -1, -1},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.text);
    QListWidget list;
    for (const char* entry : row.entries) list.addItem(entry);
    EXPECT_EQ(FindListString(list, row.text, row.start), row.found);
  }
}

GTEST_TEST(FormHelpers, FontsFallBackToInstalledOnes) {
  const int own = QFont().pointSize();
  using Row = std::pair<const char*, int>;
  for (const auto& [size, points] : {Row("14", 14), Row("nine", own), Row("", own), Row("-3", own)}) {
    SCOPED_TRACE(size);
    const QFont font = InstalledFont("no such family", size, Pitch::kProportional);
    EXPECT_EQ(font.pointSize(), points);
    EXPECT_TRUE(QFontDatabase::hasFamily(font.family())) << font.family().toStdString();
  }
  const QString other = QFontDatabase::families().constLast();
  EXPECT_EQ(InstalledFont(other.toStdString(), "9", Pitch::kFixed).family(), other);
  const QFontMetricsF fixed(FixedPitchFont());
  EXPECT_DOUBLE_EQ(fixed.horizontalAdvance("iiii"), fixed.horizontalAdvance("WWWW"));
}

GTEST_TEST(FormHelpers, FocusSelectsTheWholeText) {
  QWidget form;
  QVBoxLayout column(&form);
  QLineEdit line("some words");
  QPlainTextEdit text("two\nlines");
  column.addWidget(&line);
  column.addWidget(&text);
  SelectAllOnFocus(&line);
  SelectAllOnFocus(&text);
  form.show();
  form.activateWindow();
  line.setFocus();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&form));
  EXPECT_EQ(line.selectedText(), "some words");
  QTest::keyClick(&line, Qt::Key_Tab);
  EXPECT_EQ(text.textCursor().selectedText().size(), 9);

  line.setFocus();
  line.setSelection(0, 4);
  for (const Qt::FocusReason reason : {Qt::PopupFocusReason, Qt::ActiveWindowFocusReason}) {
    QFocusEvent back(QEvent::FocusIn, reason);
    QApplication::sendEvent(&line, &back);
    EXPECT_EQ(line.selectedText(), "some");
  }
}

GTEST_TEST(FormHelpers, CentredAndNoLargerThanTheScreen) {
  const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
  QWidget form;
  form.resize(200, 100);
  CentreOnScreen(&form);
  EXPECT_LE((form.frameGeometry().center() - screen.center()).manhattanLength(), 2);
  form.resize(9000, 9000);
  CentreOnScreen(&form);
  EXPECT_EQ(form.geometry(), screen);
}

GTEST_TEST(Pictures, AreCompiledIn) {
  for (const char* name : {"information", "exclamation", "critical", "question", "quendle", "archive"}) {
    SCOPED_TRACE(name);
    EXPECT_EQ(Picture(name).availableSizes().size(), 5);
    EXPECT_EQ(Picture(name).pixmap(QSize(48, 48), 1).size(), QSize(48, 48));
  }
  EXPECT_TRUE(Picture("other").isNull());
}

}  // namespace
}  // namespace quendle
