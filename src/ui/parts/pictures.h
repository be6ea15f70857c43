// The pictures that are compiled into the windows.
#pragma once

#include <QIcon>
#include <QPixmap>

class QWidget;

namespace quendle {

// Decoding pictures takes as long as painting a small window does. Those that the window manager shows wait so many
// milliseconds.
inline constexpr int kAfterFirstPaint = 50;

// "information", "exclamation", "critical", "question", "quendle" (the program's), "archive". Null for any
// other name.
QIcon Picture(const QString& name);

// That picture, so many logical pixels wide and high, as sharp as the screen of `widget` can show it.
QPixmap Picture(const QString& name, int size, const QWidget* widget);

}  // namespace quendle
