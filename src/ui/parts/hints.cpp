#include "ui/parts/hints.h"

#include <QFontMetrics>
#include <QTextDocument>
#include <QToolTip>

namespace quendle {
namespace {

bool IsDark(const QPalette& theme) {
  return theme.color(QPalette::Window).lightness() < theme.color(QPalette::WindowText).lightness();
}

}  // namespace

QColor MarkColour(const QPalette& theme) {
  return IsDark(theme) ? QColor(0x8A, 0xB4, 0xFF) : QColor(0, 0, 0xFF);
}

QColor WarningColour(const QPalette& theme) {
  return IsDark(theme) ? QColor(0xFF, 0x8A, 0x80) : QColor(0xB0, 0, 0);
}

QColor NoColour(const QPalette& theme) {
  return IsDark(theme) ? WarningColour(theme) : QColor(0xFF, 0, 0);
}

// A tooltip neither breaks a line without blanks, which could then be wider than the screen, nor leaves alone
// what looks like markup. Other texts stay what they are.
QString PlainToolTip(const QString& text) {
  constexpr int kWidest = 500;
  const QFontMetrics metrics(QToolTip::font());
  QString broken;
  int line = 0;
  bool is_broken = false;
  for (const char32_t character : text.toUcs4()) {
    const QString next = QString::fromUcs4(&character, 1);
    const int width = metrics.horizontalAdvance(next);
    const bool is_too_wide = line > 0 && line + width > kWidest;
    is_broken |= is_too_wide;
    if (is_too_wide || character == U'\n') {
      broken += QLatin1String("<br/>");
      line = 0;
    }
    if (character == U'\n') continue;
    broken += next.toHtmlEscaped();
    line += width;
  }
  if (!is_broken && !Qt::mightBeRichText(text)) return text;
  return QLatin1String("<p style=\"white-space:pre\">") + broken + QLatin1String("</p>");
}

}  // namespace quendle
