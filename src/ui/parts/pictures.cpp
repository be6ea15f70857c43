#include "ui/parts/pictures.h"

#include <QFile>
#include <QWidget>

// Linkers leave a part of a static library out that nothing refers to, and the pictures with it.
static void LinkPictures() {
  Q_INIT_RESOURCE(pictures);
}

namespace quendle {

QIcon Picture(const QString& name) {
  LinkPictures();
  QIcon icon;
  for (const int size : {16, 32, 48, 64, 128}) {
    const QString file = QStringLiteral(":/pictures/%1-%2.png").arg(name).arg(size);
    if (QFile::exists(file)) icon.addFile(file);
  }
  return icon;
}

QPixmap Picture(const QString& name, int size, const QWidget* widget) {
  return Picture(name).pixmap(QSize(size, size), widget->devicePixelRatioF());
}

}  // namespace quendle
