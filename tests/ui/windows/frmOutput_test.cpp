#include "ui/windows/frmOutput.h"

#include <QTest>
#include <QtWidgets>
#include <ctime>

#include "ui/parts/text.h"

namespace quendle {
namespace {

GTEST_TEST(Output, ShowsWhatNobodyCanBeFooledBy) {
  const std::pair<std::string, const char*> rows[] = {
      {"a\r\nb\tc\r\n", "a\nb\tc\n"},        {"a\rb\nc", "a\\rb\\nc"},
      {"\x1B[31m\x07", "\\u{1B}[31m\\u{7}"}, {"exe.\xE2\x80\xAEtxt", "exe.\\u{202E}txt"},
      {"\xFF 日本", "\\xFF 日本"},           {"<b>x</b>", "<b>x</b>"}};
  for (const auto& [text, shown] : rows) {
    SCOPED_TRACE(shown);
    frmOutput form(nullptr);
    form.pText(text);
    EXPECT_EQ(FromQt(form.findChild<QPlainTextEdit*>("txt")->toPlainText()), shown);
  }
}

GTEST_TEST(Output, KeysAndButtons) {
  frmOutput form(nullptr);
  form.pText("one\r\ntwo");
  form.show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&form));
  auto* txt = form.findChild<QPlainTextEdit*>("txt");
  EXPECT_EQ(form.windowTitle(), "解凍結果");
  EXPECT_TRUE(form.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
  EXPECT_EQ(txt->textCursor().selectedText().size(), 7);
  QTest::keyClicks(txt, "x");
  EXPECT_EQ(txt->toPlainText(), "one\ntwo");

  const auto copied = [] { return FromQt(QApplication::clipboard()->text()); };
  QTest::keyClick(txt, Qt::Key_Home);
  QTest::keyClick(txt, Qt::Key_A, Qt::ControlModifier);
  QTest::keyClick(txt, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(copied(), "one\ntwo");

  const QList<QPushButton*> buttons = form.findChildren<QPushButton*>();
  ASSERT_EQ(buttons.size(), 3);
  QTest::mouseClick(txt->viewport(), Qt::LeftButton);
  EXPECT_FALSE(txt->textCursor().hasSelection());
  QApplication::clipboard()->clear();
  QTest::mouseClick(buttons[1], Qt::LeftButton);
  EXPECT_EQ(copied(), "one\ntwo");
  QTest::mouseClick(txt->viewport(), Qt::LeftButton);
  QTest::mouseClick(buttons[0], Qt::LeftButton);
  EXPECT_EQ(txt->textCursor().selectedText().size(), 7);

  QTest::mouseClick(buttons[2], Qt::LeftButton);
  EXPECT_FALSE(form.isVisible());
  form.show();
  QTest::keyClick(txt, Qt::Key_Escape);
  EXPECT_FALSE(form.isVisible());
  form.show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&form));
  QTest::keyClick(txt, Qt::Key_W, Qt::ControlModifier);
  EXPECT_FALSE(form.isVisible());
}

// It takes less than a second of the processor's; the limit leaves room for sanitizers, and none for square time.
GTEST_TEST(Output, LongLogsOpenQuickly) {
  std::string log;
  for (int i = 0; log.size() < 10'000'000; ++i) log += "Extracting  写真/" + std::to_string(i) + ".jpg\r\n";
  const std::clock_t begin = std::clock();
  frmOutput form(nullptr);
  form.pText(log);
  form.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&form));
  EXPECT_FALSE(form.grab().isNull());
  EXPECT_LT((std::clock() - begin) / CLOCKS_PER_SEC, 15);
}

}  // namespace
}  // namespace quendle
