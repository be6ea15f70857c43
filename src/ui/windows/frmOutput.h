// The window that shows the log of an extraction.
#pragma once

#include <QDialog>
#include <string>

class QPlainTextEdit;

namespace quendle {

class frmOutput : public QDialog {
 public:
  explicit frmOutput(QWidget* owner);

  // The whole text, "\r\n" between lines.
  void pText(const std::string& text);

 private:
  QPlainTextEdit* txt;
};

}  // namespace quendle
