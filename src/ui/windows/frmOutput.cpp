#include "ui/windows/frmOutput.h"

#include <QApplication>
#include <QClipboard>
#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>

#include "base/display.h"
#include "ui/parts/form_helpers.h"
#include "ui/parts/text.h"

namespace quendle {
namespace {

constexpr QSize kFirstSize(640, 440);
constexpr int kButtonPadding = 28;

// Nothing that an archive is made to say may look like something else: only line breaks and tabs are obeyed.
std::string WithVisibleControls(std::string_view text) {
  std::string shown;
  shown.reserve(text.size());
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of("\r\t"), text.size());
    shown += ForDisplay(text.substr(0, end));
    text.remove_prefix(end);
    if (text.empty()) break;
    const bool is_break = text.starts_with("\r\n");
    shown += is_break ? "\n" : text.front() == '\t' ? "\t" : "\\r";
    text.remove_prefix(is_break ? 2 : 1);
  }
  return shown;
}

}  // namespace

frmOutput::frmOutput(QWidget* owner) : QDialog(owner), txt(new QPlainTextEdit(this)) {
  setWindowTitle(Text(TextId::kExtractionLogCaption));
  setWindowFlag(Qt::WindowMaximizeButtonHint);
  txt->setObjectName("txt");
  txt->setReadOnly(true);
  txt->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  txt->setLineWrapMode(QPlainTextEdit::NoWrap);
  txt->setUndoRedoEnabled(false);
  txt->setTabChangesFocus(true);
  SelectAllOnFocus(txt);

  auto* select = new QPushButton(Text(TextId::kSelectAllButton), this);
  auto* copy = new QPushButton(Text(TextId::kCopyButton), this);
  auto* close = new QPushButton(Text(TextId::kCloseButton), this);
  close->setDefault(true);
  auto* row = new QHBoxLayout;
  row->addWidget(select);
  row->addWidget(copy);
  row->addStretch();
  row->addWidget(close);
  auto* column = new QVBoxLayout(this);
  column->addWidget(txt);
  column->addLayout(row);

  connect(select, &QPushButton::clicked, txt, &QPlainTextEdit::selectAll);
  connect(copy, &QPushButton::clicked, txt, [this] {
    if (!txt->textCursor().hasSelection()) txt->selectAll();
    txt->copy();
  });
  connect(close, &QPushButton::clicked, this, &QDialog::accept);
  connect(new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_W), this), &QShortcut::activated, this,
          &QDialog::accept);

  ApplyFormFont(this, true);
  for (QPushButton* button : {select, copy, close}) {
    button->setMinimumWidth(fontMetrics().horizontalAdvance(button->text()) + kButtonPadding);
  }
  txt->setFont(FixedPitchFont());
  txt->setTabStopDistance(8 * QFontMetricsF(txt->font()).horizontalAdvance(' '));
  setMinimumSize(minimumSizeHint().expandedTo({320, 200}));
  resize(kFirstSize.boundedTo(screen()->availableSize()));
  SetTopmost(this, true);
  txt->setFocus();
}

void frmOutput::pText(const std::string& text) {
  txt->setPlainText(ToQt(WithVisibleControls(text)));
}

}  // namespace quendle
