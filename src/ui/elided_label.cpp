#include "ui/elided_label.h"

#include <QFontMetrics>
#include <QPainter>
#include <QStyle>

namespace quendle {
namespace {

// By itself a tooltip neither breaks a line without blanks, which can be wider than the screen, nor leaves alone
// what looks like markup.
QString PlainToolTip(const QString& text, const QFontMetrics& metrics) {
  constexpr int kWidest = 500;
  QString broken;
  int line = 0;
  for (const char32_t character : text.toUcs4()) {
    const QString next = QString::fromUcs4(&character, 1);
    const int width = metrics.horizontalAdvance(next);
    if (line > 0 && line + width > kWidest) {
      broken += QLatin1String("<br/>");
      line = 0;
    }
    broken += next.toHtmlEscaped();
    line += width;
  }
  return QLatin1String("<p style=\"white-space:pre\">") + broken + QLatin1String("</p>");
}

}  // namespace

ElidedLabel::ElidedLabel(QWidget* parent) : QLabel(parent) {
  setTextFormat(Qt::PlainText);
  setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

void ElidedLabel::SetText(const QString& text, const QString& whole) {
  if (text == this->text() && whole == accessibleDescription()) return;
  setText(text);
  setAccessibleDescription(whole);
  setToolTip(whole.isEmpty() ? whole : PlainToolTip(whole, fontMetrics()));
}

void ElidedLabel::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const QRect rect = contentsRect();
  const QString shown = fontMetrics().elidedText(text(), Qt::ElideMiddle, rect.width());
  style()->drawItemText(&painter, rect, static_cast<int>(alignment()), palette(), isEnabled(), shown,
                        foregroundRole());
}

}  // namespace quendle
