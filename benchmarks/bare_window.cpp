// The least that a Qt program with a window does: bare_window [TEXT FONT_FAMILY]
#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QVBoxLayout>

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const QStringList arguments = QApplication::arguments();
  if (arguments.size() > 2) QApplication::setFont(QFont(arguments[2], 9));
  QDialog window;
  QVBoxLayout layout(&window);
  QLabel label(arguments.size() > 2 ? arguments[1] : "Quendle");
  layout.addWidget(&label);
  return window.exec();
}
