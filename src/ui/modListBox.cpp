#include "ui/modListBox.h"

#include <QListWidget>

#include "base/modString.h"
#include "ui/text.h"

namespace quendle {

int FindListString(const QListWidget& list, const std::string& text, int start) {
  const int count = list.count();
  for (int i = 1; i <= count; ++i) {
    const int row = (start + i) % count;
    if (EqualsIgnoringCase(FromQt(list.item(row)->text()), text)) return row;
  }
  return -1;
}

}  // namespace quendle
