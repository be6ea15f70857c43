#include "ui/parts/modListBox.h"

#include <QAbstractItemModel>
#include <QListWidget>

#include "base/modString.h"
#include "ui/parts/text.h"

namespace quendle {

int FindListString(const QListWidget& list, const std::string& text, int start) {
  return FindListString(*list.model(), text, start);
}

int FindListString(const QAbstractItemModel& model, const std::string& text, int start) {
  const int count = model.rowCount();
  for (int i = 1; i <= count; ++i) {
    const int row = (start + i) % count;
    if (EqualsIgnoringCase(FromQt(model.index(row, 0).data().toString()), text)) return row;
  }
  return -1;
}

}  // namespace quendle
