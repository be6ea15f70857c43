#include "ui/editor_hook.h"

#include "base/text.h"
#include "resources/string_table.h"
#include "ui/modMsgBox.h"

namespace quendle {

bool OpenEditor(QWidget*, clsPropItem*) {
  ShowMessage(LoadText(text_id::kNoEditorYet), kButtonsOk, kIconInformation, "");
  return false;
}

void ShowAbout(QWidget*) {
  ShowMessage(LoadText(text_id::kNoAboutYet), kButtonsOk, kIconInformation, "");
}

}  // namespace quendle
