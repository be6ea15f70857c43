#include "ui/messages/modMsgBox.h"

#include <QApplication>

#include "ui/messages/frmMsgBox.h"

namespace quendle {
namespace {

std::string AskForLine(const std::string& prompt, const std::string& title, const std::string& default_text,
                       bool hides) {
  frmMsgBox form(QApplication::activeWindow());
  form.pTitle(title);
  form.pPrompt(prompt);
  form.pText(default_text);
  form.pButtonStyle(kButtonsOkCancel);
  form.pHidesText(hides);
  form.InitFormInputBox();
  return form.ShowInputBox();
}

}  // namespace

std::int32_t ShowMessage(const std::string& prompt, std::int32_t buttons, std::int32_t icon,
                         const std::string& title) {
  frmMsgBox form(QApplication::activeWindow());
  form.pTitle(title);
  form.pPrompt(prompt);
  form.pButtonStyle(buttons);
  form.pMsgIcon(icon);
  form.InitForm();
  return form.ShowMsgBox();
}

std::string ShowInput(const std::string& prompt, const std::string& title, const std::string& default_text) {
  return AskForLine(prompt, title, default_text, false);
}

std::string ShowPasswordInput(const std::string& prompt, const std::string& title) {
  return AskForLine(prompt, title, "", true);
}

}  // namespace quendle
