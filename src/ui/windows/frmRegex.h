// Trying a pattern on a name.
#pragma once

#include <QDialog>
#include <array>
#include <string>

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
  void Evaluate();
  void ShowResult(int text, const QColor& colour, const std::string& reason);

  std::array<QGroupBox*, 2> fra;  // 0 around the string, 1 around the pattern
  std::array<QLineEdit*, 2> txt;
  std::array<QLabel*, 1> lbl;  // the result
};

// Opens the tester with this pattern and, as the string, the name of the current target; modal to `owner`.
void OpenRegexTester(QWidget* owner, const std::string& pattern, const std::string& target_name);

}  // namespace quendle
