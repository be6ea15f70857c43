#include "ui/windows/frmRegex.h"

#include <QAccessible>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QShortcut>
#include <QVBoxLayout>

#include "base/display.h"
#include "base/regex.h"
#include "core/pattern_problem.h"
#include "platform/text/unicode.h"
#include "resources/string_table.h"
#include "ui/parts/form_helpers.h"
#include "ui/parts/hints.h"
#include "ui/parts/text.h"

namespace quendle {
namespace {

constexpr int kBoxCharacters = 56;  // that a box has room for at first

}  // namespace

frmRegex::frmRegex(QWidget* owner, const std::string& target_name) : QDialog(owner), lbl{new QLabel(this)} {
  setWindowTitle(Text(TextId::kTesterCaption));
  auto* column = new QVBoxLayout(this);
  const struct {
    Box index;
    TextId caption;
    TextId tool_tip;
  } frames[] = {{kPattern, TextId::kTesterPattern, TextId::kTesterPatternHint},
                {kString, TextId::kTesterString, TextId::kTesterStringHint}};
  for (const auto& row : frames) {
    auto* frame = new QGroupBox(Text(row.caption), this);
    auto* box = new QLineEdit(frame);
    frame->setObjectName(QString("fra(%1)").arg(row.index));
    box->setObjectName(QString("txt(%1)").arg(row.index));
    frame->setToolTip(Text(row.tool_tip));
    box->setAccessibleName(frame->title().section("(&", 0, 0));
    (new QVBoxLayout(frame))->addWidget(box);
    column->addWidget(frame);
    SelectAllOnFocus(box);
    connect(box, &QLineEdit::textChanged, this, [this] { Evaluate(); });
    fra[row.index] = frame;
    txt[row.index] = box;
  }
  lbl[0]->setObjectName("lbl(0)");
  lbl[0]->setTextFormat(Qt::PlainText);
  lbl[0]->setAlignment(Qt::AlignCenter);
  column->addWidget(lbl[0]);
  column->addStretch();
  connect(new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_W), this), &QShortcut::activated, this,
          &QDialog::reject);

  ApplyFormFont(this, true);
  QFont result = font();
  result.setBold(true);
  lbl[0]->setFont(result);
  lbl[0]->setMinimumHeight(2 * lbl[0]->fontMetrics().height());
  for (QLineEdit* box : txt) {
    box->setMinimumWidth(kBoxCharacters * fontMetrics().averageCharWidth());
  }
  txt[kString]->setText(ToQt(ForDisplay(target_name)));
  txt[kPattern]->setFocus();
}

void frmRegex::pPattern(const std::string& pattern) {
  txt[kPattern]->setText(ToQt(pattern));
}

void frmRegex::Evaluate() {
  const QColor black = palette().color(QPalette::WindowText);
  if (txt[kString]->text().isEmpty() || txt[kPattern]->text().isEmpty()) {
    return ShowResult(TextId::kNone, black, "");
  }
  const std::string pattern = FromQt(txt[kPattern]->text());
  const Regex regex(pattern);
  const std::string subject = FromDisplay(FromQt(txt[kString]->text()));
  switch (regex.MatchWhole(platform::WithReplacementCharacters(subject))) {
    case RegexAnswer::kWhole:
      return ShowResult(TextId::kRegexMatch, black, "");
    case RegexAnswer::kNotWhole:
      return ShowResult(TextId::kRegexUnmatch, NoColour(palette()), "");
    case RegexAnswer::kError:
      return ShowResult(TextId::kRegexError, NoColour(palette()), PatternProblem(pattern, regex));
  }
}

void frmRegex::ShowResult(TextId text, const QColor& colour, const std::string& reason) {
  QPalette colours = lbl[0]->palette();
  colours.setColor(QPalette::WindowText, colour);
  lbl[0]->setPalette(colours);
  lbl[0]->setToolTip(PlainToolTip(ToQt(reason)));
  const QString shown = Text(text);
  if (lbl[0]->text() == shown) return;
  lbl[0]->setText(shown);
  // Nobody's focus is on it: a screen reader speaks of it only when it is told to.
  QAccessibleEvent alert(lbl[0], QAccessible::Alert);
  QAccessible::updateAccessibility(&alert);
}

void OpenRegexTester(QWidget* owner, const std::string& pattern, const std::string& target_name) {
  frmRegex form(owner, target_name);
  form.pPattern(pattern);
  form.exec();
}

}  // namespace quendle
