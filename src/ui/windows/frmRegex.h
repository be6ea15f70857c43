// Trying a pattern on a name.
#pragma once

#include <QDialog>
#include <array>
#include <cstddef>
#include <string>

#include "resources/string_table.h"

class QGroupBox;
class QLabel;
class QLineEdit;

namespace quendle {

// Says with each change whether the pattern fits the whole string.
class frmRegex : public QDialog {
 public:
  // `target_name` is the string at first; bytes and marks that could fool are shown as ForDisplay does, and
  // matched as what they are.
  frmRegex(QWidget* owner, const std::string& target_name);

  void pPattern(const std::string& pattern);

 private:
  // The boxes by their places in the arrays.
  enum Box : std::size_t { kString, kPattern, kBoxes };

  void Evaluate();
  void ShowResult(TextId text, const QColor& colour, const std::string& reason);

  std::array<QGroupBox*, kBoxes> fra;
  std::array<QLineEdit*, kBoxes> txt;
  std::array<QLabel*, 1> lbl;  // the result
};

// Opens the tester with this pattern and, as the string, the name of the current target; modal to `owner`.
void OpenRegexTester(QWidget* owner, const std::string& pattern, const std::string& target_name);

}  // namespace quendle
