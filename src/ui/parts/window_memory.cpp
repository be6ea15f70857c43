#include "ui/parts/window_memory.h"

#include <QGuiApplication>
#include <QRect>
#include <QScreen>
#include <QSettings>
#include <QWidget>

#include "base/modString.h"
#include "platform/services/known_folders.h"
#include "ui/parts/text.h"

namespace quendle {
namespace {

// So much of a title bar has to be in sight that the pointer can take it.
constexpr QSize kGrip(120, 24);

QScreen* ScreenOf(const QRect& place) {
  const QRect title_bar(place.topLeft(), QSize(place.width(), kGrip.height()));
  for (QScreen* screen : QGuiApplication::screens()) {
    const QRect seen = screen->availableGeometry().intersected(title_bar);
    if (seen.width() >= kGrip.width() && seen.height() >= kGrip.height()) return screen;
  }
  return nullptr;
}

}  // namespace

WindowMemory::WindowMemory(const std::string& file, const QString& window)
    : file_(ToQt(file)), window_(window) {}

std::string WindowMemory::UsualFile() {
  const std::string folder = platform::StateFolder();
  if (folder.empty()) return "";
  return AddBackslash(AddBackslash(folder) + "quendle") + "windows.ini";
}

QString WindowMemory::Key(const char* name) const {
  return window_ + QLatin1Char('/') + QLatin1String(name);
}

bool WindowMemory::RestorePlace(QWidget* window) const {
  if (file_.isEmpty()) return false;
  const QSettings settings(file_, QSettings::IniFormat);
  const QRect place = settings.value(Key("place")).toRect();
  if (!place.isValid()) return false;
  QScreen* screen = ScreenOf(place);
  const QScreen* largest = screen == nullptr ? QGuiApplication::primaryScreen() : screen;
  window->resize(largest == nullptr ? place.size() : place.size().boundedTo(largest->availableSize()));
  if (screen == nullptr) return false;
  window->move(place.topLeft());
  if (settings.value(Key("maximized")).toBool()) window->setWindowState(Qt::WindowMaximized);
  return true;
}

void WindowMemory::KeepPlace(const QWidget& window) const {
  if (file_.isEmpty()) return;
  QSettings settings(file_, QSettings::IniFormat);
  const bool is_maximized = window.isMaximized();
  settings.setValue(Key("maximized"), is_maximized);
  // Qt knows the place without the frame only of a window that fills the screen.
  const QRect normal = window.normalGeometry();
  const bool is_normal = !is_maximized && !window.isFullScreen();
  settings.setValue(Key("place"), is_normal ? QRect(window.pos(), window.size()) : normal);
}

ColumnMemory WindowMemory::Columns() const {
  ColumnMemory columns;
  if (file_.isEmpty()) return columns;
  const QSettings settings(file_, QSettings::IniFormat);
  for (const QString& width : settings.value(Key("columns")).toStringList()) columns.widths += width.toInt();
  columns.sorted = settings.value(Key("sorted")).toInt();
  columns.descending = settings.value(Key("descending")).toBool();
  return columns;
}

void WindowMemory::KeepColumns(const ColumnMemory& columns) const {
  if (file_.isEmpty()) return;
  QSettings settings(file_, QSettings::IniFormat);
  QStringList widths;
  for (const int width : columns.widths) widths += QString::number(width);
  settings.setValue(Key("columns"), widths);
  settings.setValue(Key("sorted"), columns.sorted);
  settings.setValue(Key("descending"), columns.descending);
}

}  // namespace quendle
