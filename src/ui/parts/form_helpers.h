// What all windows share.
#pragma once

#include <QColor>
#include <QFont>
#include <QWidget>
#include <string>

class QLineEdit;
class QPlainTextEdit;

namespace quendle {

// One twip is 1/1440 inch; windows count 15 of them to a logical pixel.
inline constexpr int kTwipsPerPixel = 15;

// The font of that family, or where it is not installed the first of our substitutes that is. `size` is in
// points; one that is no positive number leaves Qt's.
enum class Pitch { kProportional, kFixed };
QFont InstalledFont(const std::string& family, const std::string& size, Pitch pitch);

// The proportional one of texts 20 and 21, and the fixed-pitch one of texts 22 and 23.
QFont DialogFont();
QFont FixedPitchFont();

// The dialog font for the form and every control of it.
void ApplyFormFont(QWidget* form, bool from_string_table);

// The whole text becomes the selection.
void SelectAllText(QLineEdit* box);
void SelectAllText(QPlainTextEdit* box);
// The same whenever the box gets the focus, but not when a menu closes or the user comes back from another
// window: what was selected then stays.
void SelectAllOnFocus(QLineEdit* box);
void SelectAllOnFocus(QPlainTextEdit* box);

// In front of all other windows, or not any more. To be called before the window is shown, or else it
// flickers.
void SetTopmost(QWidget* form, bool topmost);

// Files that are dropped on any control reach the form, which handles them.
void EnableDropOnControls(QWidget* form);

// In the middle of the screen that has the pointer, and no larger than it.
void CentreOnScreen(QWidget* form);

// Moves a window that has grown up until its lower edge is on the screen, but not beyond the upper one.
void KeepOnScreen(QWidget* form);

// ground with so many percent of colour in it, opaque.
QColor MixedColour(const QColor& ground, const QColor& colour, int percent);

}  // namespace quendle
