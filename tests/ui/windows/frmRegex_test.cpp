#include "ui/windows/frmRegex.h"

#include <QtWidgets>

#include "ui/modal.h"
#include "ui/parts/text.h"

namespace quendle {
namespace {

struct Shown {
  explicit Shown(const std::string& name, const std::string& first = "") : form(nullptr, name) {
    form.pPattern(first);
    form.show();
    (void)QTest::qWaitForWindowActive(&form);
  }
  std::string Result() const { return FromQt(lbl->text()); }

  frmRegex form;
  QLineEdit* string = form.findChild<QLineEdit*>("txt(0)");
  QLineEdit* pattern = form.findChild<QLineEdit*>("txt(1)");
  QLabel* lbl = form.findChild<QLabel*>("lbl(0)");
};

GTEST_TEST(RegexTester, SaysWhetherTheWholeStringFits) {
  const struct {
    const char *name, *pattern, *result;
    QColor colour;
  } rows[] = {
      {"abc", "a", "Unmatch.", QColor(255, 0, 0)},
      {"abc", "a.*", "Match.", Qt::black},
      {"abc", "(", "Error in Regex.", QColor(255, 0, 0)},
      {"abc", "", "", Qt::black},
      {"", "a", "", Qt::black},
      {"写真１.JPG", "写真.\\.jpg", "Match.", Qt::black},
      {"a\nb\\c", "a\\sb\\\\c", "Match.", Qt::black},  // shown with "\n" and two backslashes
      {"x\xFF", "x\uFFFD", "Match.", Qt::black},
      {"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa!", "(a+)+\\d", "Error in Regex.",
       QColor(255, 0, 0)},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.name) + " " + row.pattern);
    Shown shown(row.name);
    QApplication::clipboard()->setText(row.pattern);
    QTest::keyClick(shown.pattern, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(shown.Result(), row.result);
    EXPECT_EQ(shown.lbl->palette().color(QPalette::WindowText), row.colour);
    const QString why = shown.lbl->toolTip();
    EXPECT_EQ(why.contains("括弧") || why.contains("時間"), shown.Result() == "Error in Regex.")
        << FromQt(why);
  }
}

GTEST_TEST(RegexTester, FollowsEachKey) {
  Shown shown("abc", "abc");
  EXPECT_EQ(shown.form.windowTitle(), "Test Regex");
  EXPECT_EQ(shown.form.findChild<QGroupBox*>("fra(1)")->title(), "正規表現(&R)");
  EXPECT_EQ(shown.form.findChild<QGroupBox*>("fra(0)")->toolTip(), " テストしたい文字列を入力します。 ");
  EXPECT_EQ(shown.Result(), "Match.");
  EXPECT_EQ(QAccessible::queryAccessibleInterface(shown.lbl)->text(QAccessible::Name), "Match.");
  EXPECT_EQ(QApplication::focusWidget(), shown.pattern);
  EXPECT_EQ(shown.pattern->selectedText(), "abc");

  QTest::keyClick(&shown.form, Qt::Key_S, Qt::AltModifier);
  EXPECT_EQ(QApplication::focusWidget(), shown.string);
  EXPECT_EQ(shown.string->selectedText(), "abc");
  QTest::keyClick(shown.string, Qt::Key_End);
  QTest::keyClicks(shown.string, "d");
  EXPECT_EQ(shown.Result(), "Unmatch.");
  QTest::keyClick(shown.string, Qt::Key_Return);
  EXPECT_TRUE(shown.form.isVisible());
  QTest::keyClick(shown.string, Qt::Key_A, Qt::ControlModifier);
  QTest::keyClick(shown.string, Qt::Key_Delete);
  EXPECT_EQ(shown.Result(), "");
}

GTEST_TEST(RegexTester, ClosesByKeys) {
  const std::pair<Qt::Key, Qt::KeyboardModifiers> keys[] = {{Qt::Key_Escape, Qt::NoModifier},
                                                            {Qt::Key_W, Qt::ControlModifier}};
  for (const auto& [key, modifiers] : keys) {
    const test::WithModal modal([key = key, modifiers = modifiers](const QWidget& form) {
      EXPECT_EQ(form.findChild<QLineEdit*>("txt(1)")->text(), "p");
      EXPECT_EQ(form.findChild<QLineEdit*>("txt(0)")->text(), "name");
      QTest::keyClick(form.focusWidget(), key, modifiers);
    });
    OpenRegexTester(nullptr, "p", "name");
    EXPECT_EQ(modal.windows(), 1);
  }
}

}  // namespace
}  // namespace quendle
