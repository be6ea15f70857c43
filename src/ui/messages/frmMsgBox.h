// The window behind modMsgBox: a message box or an input box that sizes itself to its text and buttons.
#pragma once

#include <QDialog>
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "ui/messages/msg_box_layout.h"

class QLabel;
class QLineEdit;
class QPushButton;
class QScrollArea;

namespace quendle {

class WrappedLabel;

// The properties first, then InitForm and ShowMsgBox, or InitFormInputBox and ShowInputBox; once.
class frmMsgBox : public QDialog {
 public:
  explicit frmMsgBox(QWidget* owner);

  void pText(const std::string& text);    // to begin with in the input box
  void pTitle(const std::string& title);  // empty: the name of the program
  void pPrompt(const std::string& prompt);
  void pMsgIcon(std::int32_t icon);
  void pButtonStyle(std::int32_t style);
  void pHidesText(bool hides);  // what is typed into the input box

  void InitForm();
  void InitFormInputBox();

  // The answer of the button that was pressed; 0 when the program ends meanwhile.
  std::int32_t ShowMsgBox();
  // What was typed; empty unless OK was pressed.
  std::string ShowInputBox();

  void reject() override;  // Esc

 protected:
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  BoxInput Measure();
  void Place(const BoxLayout& box);
  void FinishButtons();
  void cmd_Click(std::size_t index);
  bool PressByLetter(const QKeyEvent& event);

  std::vector<QPushButton*> cmd;
  QScrollArea* scroll_;  // around lblMsg, for a prompt that is higher than the screen
  WrappedLabel* lblMsg;
  QLabel* imgMsg;
  std::array<QPixmap, 4> imgIcon;
  QLineEdit* txtInput;

  std::string title_;
  std::int32_t icon_ = 0;
  const ButtonSet* buttons_;
  std::int32_t answer_ = 0;
  bool bare_letters_ = false;  // press a button without Alt
};

}  // namespace quendle
