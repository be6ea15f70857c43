// The question whether an existing file may be replaced.
#pragma once

#include <QDialog>
#include <QString>

#include "base/user_interface.h"
#include "platform/moving/file_operation.h"
#include "resources/string_table.h"

class QBoxLayout;
class QGridLayout;

namespace quendle {

class frmOverwrite : public QDialog {
 public:
  frmOverwrite(QWidget* owner, const platform::FileSide& existing, const platform::FileSide& incoming);

  // Shows the window until the user has answered. Esc and the close box cancel.
  UserInterface::OverwriteAnswer Ask();

 private:
  QWidget* MakeSide(TextId title, const platform::FileSide& file, const platform::FileSide& other);
  void AddButton(QBoxLayout* row, TextId text, UserInterface::OverwriteAnswer answer);

  UserInterface::OverwriteAnswer answer_ = UserInterface::OverwriteAnswer::kCancel;
};

}  // namespace quendle
