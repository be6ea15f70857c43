#include "ui/hints.h"

#include <QTextDocument>

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

QString PlainToolTip(const QString& text) {
  // Markup is taken for such unless there is some that makes it harmless.
  return Qt::mightBeRichText(text) ? "<span>" + text.toHtmlEscaped().replace('\n', "<br>") + "</span>" : text;
}

}  // namespace quendle
