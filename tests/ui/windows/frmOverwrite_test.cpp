#include "ui/windows/frmOverwrite.h"

#include <QtWidgets>

#include "support/scoped_variable.h"
#include "ui/modal.h"
#include "ui/parts/elided_label.h"

namespace quendle {
namespace {

using platform::FileSide;
using Answer = UserInterface::OverwriteAnswer;

const FileSide kOld = {"/in/資料 <b>1<p>.txt", 1572864, 1068201005};
const FileSide kNew = {"/out/資料 <b>1<p>.txt", 12, 1068201006};

QStringList Texts(const QWidget& window) {
  QStringList texts;
  for (const QLabel* label : window.findChildren<QLabel*>()) texts.append(label->text());
  return texts;
}

GTEST_TEST(frmOverwrite, EveryAnswerByMouseAndByKey) {
  const struct {
    const char* button;
    Qt::Key key;
    Qt::KeyboardModifier modifier;
    Answer answer;
  } rows[] = {
      {"はい(Y)", Qt::Key_Y, Qt::AltModifier, Answer::kYes},
      {"いいえ(N)", Qt::Key_N, Qt::AltModifier, Answer::kNo},
      {"すべてはい(A)", Qt::Key_A, Qt::AltModifier, Answer::kYesToAll},
      {"すべていいえ(O)", Qt::Key_O, Qt::AltModifier, Answer::kNoToAll},
      {"キャンセル", Qt::Key_Escape, Qt::NoModifier, Answer::kCancel},
      {"いいえ(N)", Qt::Key_Return, Qt::NoModifier, Answer::kNo},
      {"いいえ(N)", Qt::Key_Space, Qt::NoModifier, Answer::kNo},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.button);
    {
      const test::WithModal modal([&](QWidget& window) { test::Click(window, row.button); });
      EXPECT_EQ(frmOverwrite(nullptr, kOld, kNew).Ask(), row.answer);
    }
    const test::WithModal modal([&](QWidget& window) {
      QWidget* focus = window.focusWidget();
      QTest::keyClick(focus == nullptr ? &window : focus, row.key, row.modifier);
    });
    EXPECT_EQ(frmOverwrite(nullptr, kOld, kNew).Ask(), row.answer);
  }
  const test::WithModal modal([](QWidget& window) { window.close(); });
  EXPECT_EQ(frmOverwrite(nullptr, kOld, kNew).Ask(), Answer::kCancel);
}

GTEST_TEST(frmOverwrite, ShowsBothFilesAndWhatDiffers) {
  const test::ScopedVariable zone("TZ", "JST-9");
  tzset();
  frmOverwrite window(nullptr, kOld, kNew);
  window.show();
  const QStringList texts = Texts(window);
  for (const char* shown : {"資料 <b>1<p>.txt", "/in/", "/out/", "1.5 MiB（1,572,864 バイト）",
                            "12 B（12 バイト）", "2003-11-07 19:30:05", "2003-11-07 19:30:06"}) {
    EXPECT_TRUE(texts.contains(shown)) << shown << " in " << texts.join(u'|').toStdString();
  }
  // One mark each: beside the older file's size, and beside the newer one's date.
  const auto at = [&texts](const char* text) { return texts.indexOf(QString(text)); };
  EXPECT_EQ(at("← こちらが大きい"), at("1.5 MiB（1,572,864 バイト）") + 1);
  EXPECT_EQ(at("← こちらが新しい"), at("2003-11-07 19:30:06") + 1);
  EXPECT_EQ(texts.filter("こちら").size(), 2);
  EXPECT_TRUE(Texts(frmOverwrite(nullptr, kOld, kOld)).filter("こちら").empty());
}

GTEST_TEST(frmOverwrite, LongNamesStayOnTheScreen) {
  std::string name;
  for (int i = 0; i < 100; ++i) name += "漢字 ";
  frmOverwrite window(nullptr, {"/" + name + "/" + name, 1, 1}, {"/in/" + name, 1, 1});
  window.show();
  QTest::qWait(1);
  EXPECT_LE(window.frameGeometry().width(), window.screen()->availableGeometry().width());
  for (const QLabel* label : window.findChildren<QLabel*>()) {
    EXPECT_EQ(label->textFormat() == Qt::PlainText, dynamic_cast<const ElidedLabel*>(label) != nullptr);
    EXPECT_LE(label->mapTo(&window, label->rect().bottomRight()).x(), window.width());
  }
}

}  // namespace
}  // namespace quendle
