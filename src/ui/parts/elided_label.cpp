#include "ui/parts/elided_label.h"

#include <QFontMetrics>
#include <QPainter>
#include <QStyle>

#include "ui/parts/hints.h"

namespace quendle {
ElidedLabel::ElidedLabel(QWidget* parent) : QLabel(parent) {
  setTextFormat(Qt::PlainText);
  setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

void ElidedLabel::SetText(const QString& text, const QString& whole) {
  if (text == this->text() && whole == accessibleDescription()) return;
  setText(text);
  setAccessibleDescription(whole);
  setToolTip(whole.isEmpty() ? whole : PlainToolTip(whole));
}

void ElidedLabel::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const QRect rect = contentsRect();
  const QString shown = fontMetrics().elidedText(text(), Qt::ElideMiddle, rect.width());
  style()->drawItemText(&painter, rect, static_cast<int>(alignment()), palette(), isEnabled(), shown,
                        foregroundRole());
}

}  // namespace quendle
