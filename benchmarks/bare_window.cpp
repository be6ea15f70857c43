// The least that a Qt program with a window does.
#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QVBoxLayout>

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QDialog window;
  QVBoxLayout layout(&window);
  QLabel label("Quendle");
  layout.addWidget(&label);
  return window.exec();
}
