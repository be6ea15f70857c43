// Where windows were and how they looked, from one run to the next.
#pragma once

#include <QList>
#include <QString>
#include <string>

class QWidget;

namespace quendle {

struct ColumnMemory {
  QList<int> widths;  // in logical pixels; empty: nothing is remembered
  int sorted = 0;
  bool descending = false;
};

// Kept apart from the settings, which people copy from computer to computer. What cannot be read or written
// is not worth a message: windows then stand where they stand at first.
class WindowMemory {
 public:
  // `file` need not exist, nor its folder; empty: nothing is remembered. `window` names what is remembered in
  // it.
  WindowMemory(const std::string& file, const QString& window);

  // The file of the user's windows.
  static std::string UsualFile();

  // False when nothing is remembered, or its title bar would be on no screen that there is: the window has
  // the remembered size then, if any, but no place.
  bool RestorePlace(QWidget* window) const;
  void KeepPlace(const QWidget& window) const;

  ColumnMemory Columns() const;
  void KeepColumns(const ColumnMemory& columns) const;

 private:
  QString Key(const char* name) const;

  QString file_;
  QString window_;
};

}  // namespace quendle
