// What the program is, and which archiver libraries it has.
#pragma once

#include <QDialog>
#include <string>

class QLabel;
class QListWidget;
class QPushButton;

namespace quendle {

class WrappedLabel;

class frmAbout : public QDialog {
 public:
  // `module_folder` holds the archiver libraries. Those that are there are loaded, to say whose they are.
  frmAbout(QWidget* owner, const std::string& module_folder);

 private:
  void LayOut();

  QLabel* img;
  WrappedLabel* lblCopyright;
  QListWidget* lst;
  QPushButton* cmd;
};

// Shows it, modal to `owner`. `module_folder` holds the archiver libraries.
void ShowAbout(QWidget* owner, const std::string& module_folder);

}  // namespace quendle
