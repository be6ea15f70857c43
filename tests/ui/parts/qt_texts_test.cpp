#include "ui/parts/qt_texts.h"

#include <QtWidgets>

#include "support/temp_folder.h"
#include "ui/parts/text.h"

namespace quendle {
namespace {

QStringList TextsOf(const QObject& root) {
  QStringList texts;
  for (const auto* action : root.findChildren<QAction*>()) texts << action->text() << action->toolTip();
  for (const auto* widget : root.findChildren<QWidget*>()) {
    texts << widget->toolTip() << widget->accessibleName() << widget->accessibleDescription();
  }
  for (const auto* button : root.findChildren<QAbstractButton*>()) texts << button->text();
  for (const auto* label : root.findChildren<QLabel*>()) texts << label->text();
  for (const auto* header : root.findChildren<QHeaderView*>()) {
    for (int i = 0; header->model() != nullptr && i < header->count(); ++i) {
      texts << header->model()->headerData(i, header->orientation()).toString();
    }
  }
  return texts;
}

// Two letters in a row that are no name of a key and no OK.
std::string English(const QStringList& texts) {
  static const QRegularExpression known("\\t.*|\\bOK\\b|\\bquendle-test-\\w+");
  QStringList english;
  for (QString text : texts) {
    if (text.remove(known).contains(QRegularExpression("[A-Za-z]{2}"))) english << text;
  }
  return FromQt(english.join(" | "));
}

class QtTexts : public testing::Test {
 protected:
  static void SetUpTestSuite() { InstallQtTexts(QCoreApplication::instance()); }
};

GTEST_TEST_F(QtTexts, ContextMenus) {
  QLineEdit line;
  const std::unique_ptr<QMenu> of_line(line.createStandardContextMenu());
  EXPECT_GE(TextsOf(*of_line).size(), 14);
  EXPECT_EQ(English(TextsOf(*of_line)), "");
  QPlainTextEdit text;
  const std::unique_ptr<QMenu> of_text(text.createStandardContextMenu());
  EXPECT_EQ(English(TextsOf(*of_text)), "");

  QSpinBox spin;
  spin.show();
  QTimer::singleShot(0, [] {
    QWidget* menu = QApplication::activePopupWidget();
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(English(TextsOf(*menu)), "");
    menu->close();
  });
  QContextMenuEvent asked(QContextMenuEvent::Keyboard, QPoint(3, 3), spin.mapToGlobal(QPoint(3, 3)));
  QApplication::sendEvent(&spin, &asked);
}

GTEST_TEST_F(QtTexts, FileDialogs) {
  const test::TempFolder folder;
  for (const QFileDialog::AcceptMode accept : {QFileDialog::AcceptOpen, QFileDialog::AcceptSave}) {
    for (const QFileDialog::FileMode mode :
         {QFileDialog::AnyFile, QFileDialog::ExistingFile, QFileDialog::Directory}) {
      SCOPED_TRACE(testing::Message() << accept << " " << mode);
      QFileDialog dialog;
      dialog.setOption(QFileDialog::DontUseNativeDialog);
      dialog.setAcceptMode(accept);
      dialog.setFileMode(mode);
      dialog.setDirectory(ToQt(folder.path()));
      dialog.show();
      QStringList texts = TextsOf(dialog);
      EXPECT_GT(texts.size(), 50);
      texts << dialog.windowTitle() << dialog.nameFilters();
      EXPECT_EQ(English(texts), "");
    }
  }
}

GTEST_TEST_F(QtTexts, StandardButtons) {
  for (int bit = QDialogButtonBox::FirstButton; bit <= QDialogButtonBox::LastButton; bit *= 2) {
    const QDialogButtonBox box{QDialogButtonBox::StandardButtons(bit)};
    EXPECT_EQ(box.buttons().size(), 1) << bit;
    EXPECT_EQ(English(TextsOf(box)), "");
  }
}

}  // namespace
}  // namespace quendle
