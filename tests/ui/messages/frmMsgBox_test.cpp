#include "ui/messages/frmMsgBox.h"

#include <QtWidgets>

#include "ui/messages/modMsgBox.h"
#include "ui/messages/msg_box_layout.h"
#include "ui/modal.h"
#include "ui/parts/text.h"

namespace quendle {
namespace {

using Script = std::function<void(QWidget& box)>;

Script Key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
  return [=](QWidget&) { QTest::keyClick(QApplication::focusWidget(), key, modifiers); };
}

Script Click(const char* caption) {
  return [=](QWidget& box) { test::Click(box, caption); };
}

void CloseBox(QWidget& box) {
  box.close();
}

GTEST_TEST(MsgBox, AnswersOfKeysAndClicks) {
  const struct {
    const char* name;
    std::int32_t buttons;
    Script script;
    std::int32_t answer;
  } rows[] = {
      {"y", kButtonsYesNo, Key(Qt::Key_Y), kAnswerYes},
      {"shift n", kButtonsYesNo, Key(Qt::Key_N, Qt::ShiftModifier), kAnswerNo},
      {"alt n", kButtonsYesNo, Key(Qt::Key_N, Qt::AltModifier), kAnswerNo},
      {"r", kButtonsRetryCancel, Key(Qt::Key_R), kAnswerRetry},
      {"enter", kButtonsYesNoCancel, Key(Qt::Key_Return), kAnswerYes},
      {"escape", kButtonsYesNoCancel, Key(Qt::Key_Escape), kAnswerCancel},
      {"escape, no", kButtonsYesNo, Key(Qt::Key_Escape), kAnswerNo},
      {"close box", kButtonsYesNoCancel, CloseBox, kAnswerCancel},
      {"close box, no", kButtonsYesNo, CloseBox, kAnswerNo},
      {"close box of a message", kButtonsOk, CloseBox, kAnswerOk},
      {"click", kButtonsYesNoCancel, Click("No"), kAnswerNo},
      {"click on Ok", kButtonsOkCancel, Click("Ok"), kAnswerOk},
      {"click on Cancel", kButtonsOkCancel, Click("Cancel"), kAnswerCancel},
      {"close box of a second try", kButtonsRetryCancel, CloseBox, kAnswerCancel},
      {"tab and space", kButtonsYesNoCancel,
       [](QWidget& box) {
         Key(Qt::Key_Tab)(box);
         Key(Qt::Key_Space)(box);
       },
       kAnswerNo},
      {"a press taken for a repetition, since no release came", kButtonsOk,
       [](QWidget& box) {
         const struct {
           QEvent::Type type;
           Qt::Key key;
           bool is_repeat;
         } events[] = {{QEvent::KeyPress, Qt::Key_X, false},
                       {QEvent::KeyRelease, Qt::Key_Return, true},
                       {QEvent::KeyPress, Qt::Key_Return, true}};
         for (const auto& event : events) {
           QKeyEvent key(event.type, event.key, Qt::NoModifier, "", event.is_repeat);
           QApplication::sendEvent(box.windowHandle(), &key);
         }
       },
       kAnswerOk},
      {"what answers nothing", kButtonsOk,
       [](QWidget& box) {
         Key(Qt::Key_Escape)(box);
         Key(Qt::Key_X)(box);
         Key(Qt::Key_O, Qt::ControlModifier)(box);
         QKeyEvent held(QEvent::KeyPress, Qt::Key_O, Qt::NoModifier, "o", true);
         QApplication::sendEvent(QApplication::focusWidget(), &held);
         EXPECT_TRUE(box.isVisible());
         Key(Qt::Key_O)(box);
       },
       kAnswerOk},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const test::WithModal box(row.script);
    EXPECT_EQ(ShowMessage("続けますか？", row.buttons, kIconQuestion, ""), row.answer);
  }
  EXPECT_DEATH(ButtonsOfStyle(2), "");
}

GTEST_TEST(MsgBox, InputBox) {
  const struct {
    const char* name;
    Script script;
    const char* text;
  } rows[] = {
      {"as proposed", Key(Qt::Key_Return), "Proposed"},
      {"typing replaces, letters are typed",
       [](QWidget& box) {
         QTest::keyClicks(QApplication::focusWidget(), "Oc");
         Key(Qt::Key_O, Qt::AltModifier)(box);
       },
       "Oc"},
      {"empty", [](QWidget& box) { Key(Qt::Key_Delete)(box), Click("Ok")(box); }, ""},
      {"alt c", Key(Qt::Key_C, Qt::AltModifier), ""},
      {"escape", Key(Qt::Key_Escape), ""},
      {"close box", CloseBox, ""},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const test::WithModal box(row.script);
    EXPECT_EQ(ShowInput("名前を入力してください。", "追加", "Proposed"), row.text);
  }
  const test::WithModal modal([](QWidget& box) {
    QTest::keyClicks(QApplication::focusWidget(), "secret");
    EXPECT_FALSE(box.findChild<QLineEdit*>()->displayText().contains("secret"));
    Key(Qt::Key_Return)(box);
  });
  EXPECT_EQ(ShowPasswordInput("パスワードを入力してください。", ""), "secret");
}

GTEST_TEST(MsgBox, TitleOwnerAndPlace) {
  QWidget owner;
  owner.setGeometry(100, 100, 200, 150);
  owner.show();
  owner.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&owner));
  QStringList titles;
  const test::WithModal modal([&](QWidget& box) {
    titles += box.windowTitle();
    EXPECT_EQ(box.parentWidget(), &owner);
    EXPECT_EQ(box.windowFlags().testFlag(Qt::WindowStaysOnTopHint), titles.size() == 1);
    EXPECT_LE((box.frameGeometry().center() - owner.frameGeometry().center()).manhattanLength(), 30);
    box.close();
  });
  ShowMessage("a", kButtonsOk, 0, "");
  owner.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&owner));
  ShowInput("a", "追加", "");
  EXPECT_EQ(titles, QStringList({"Quendle", "追加"}));
}

GTEST_TEST(MsgBox, IconsDiffer) {
  std::vector<QImage> seen;
  for (const std::int32_t icon : {kIconCritical, kIconQuestion, kIconExclamation, kIconInformation, 17}) {
    const test::WithModal modal([&](QWidget& box) {
      const QImage image = box.findChild<QLabel*>("imgMsg")->pixmap().toImage();
      EXPECT_EQ(image.isNull(), icon == 17);
      for (const QImage& other : seen) EXPECT_NE(image, other);
      seen.push_back(image);
      box.close();
    });
    ShowMessage("フォルダ「写真」へ移動できません。\r\n空き容量が足りません。", kButtonsOk, icon, "");
  }
}

// Is every line of the prompt drawn, and everything inside the box?
GTEST_TEST(MsgBox, LongPromptsCanBeReadToTheEnd) {
  const std::string path = std::string("/").append(300, 'W');
  std::string many = "a";
  for (int i = 0; i < 200; ++i) many += "\r\n" + std::to_string(i);
  const struct {
    const char* name;
    std::string prompt;
    bool scrolls;
  } rows[] = {{"one word", "a", false},
              {"a path without blanks", path, false},
              {"sentence and markup",
               std::string("<b>とても長い文章です。</b> ").append(200, 'i').append(" end"), false},
              {"more lines than the screen", many, true}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const test::WithModal modal([&row](QWidget& box) {
      EXPECT_LE(box.frameGeometry().height(), box.screen()->availableSize().height());
      auto* label = box.findChild<QLabel*>("lblMsg");
      EXPECT_EQ(label->text(), ToQt(row.prompt));
      EXPECT_GE(label->height(), label->heightForWidth(label->width()));
      auto* bar = box.findChild<QScrollArea*>()->verticalScrollBar();
      EXPECT_TRUE(QTest::qWaitFor([&] { return bar->isVisible() == row.scrolls; }, 1000));
      Key(Qt::Key_PageDown)(box);
      EXPECT_EQ(bar->value() > 0, row.scrolls);
      for (QWidget* child : box.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
        const bool is_shown = child->isVisible() && !child->size().isEmpty();
        EXPECT_TRUE(!is_shown || box.rect().contains(child->geometry()));
      }
      box.close();
    });
    ShowMessage(row.prompt, kButtonsYesNoCancel, kIconExclamation, "");
    ShowInput(row.prompt, "", "");
  }
}

}  // namespace
}  // namespace quendle
