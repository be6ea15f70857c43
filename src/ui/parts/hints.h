// Colours and tooltips of what the user is to notice.
#pragma once

#include <QColor>
#include <QPalette>
#include <QString>

namespace quendle {

// Blue, and a red that warns; both brighter where the windows are dark.
QColor MarkColour(const QPalette& theme);
QColor WarningColour(const QPalette& theme);

// The full red of an answer that is no; brighter where the windows are dark.
QColor NoColour(const QPalette& theme);

// A tooltip that shows the text as it is, whatever markup is in it and however long its lines are.
QString PlainToolTip(const QString& text);

}  // namespace quendle
