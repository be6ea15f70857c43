// The list of profiles: everything that is not done with a file at hand is reached from here.
#pragma once

#include <QMainWindow>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/edit_mode.h"
#include "core/profile_list.h"
#include "core/windows_library.h"
#include "resources/string_table.h"
#include "ui/messages/modMsgBox.h"
#include "ui/parts/window_memory.h"
#include "ui/windows/profile_model.h"

class QDropEvent;
class QEventLoop;
class QLabel;
class QLineEdit;
class QMenu;
class QToolBar;
class QTreeView;

namespace quendle {

class ElidedLabel;

// Shows it until the user closes it.
void RunProfileList(const WindowsHost& host);

// What the list opens and starts.
struct MainServices {
  MessageFunction show_message = ShowMessage;
  InputFunction show_input = ShowInput;
  // Opens the editor as OpenEditor does.
  std::function<std::optional<std::string>(QWidget*, EditMode, const std::string& title)> open_editor;
  std::function<void(QWidget*, const std::string& pattern, const std::string& name)> open_tester;
  std::function<void(QWidget*)> show_about;
  std::function<platform::Result(const std::string& folder)> show_in_file_manager;
  std::function<void(const std::vector<std::string>& paths)> dispatch;
  std::function<bool()> is_interrupted = [] { return false; };
  // What other copies were started with, since the last call.
  std::function<platform::LeftPaths()> take_left = [] { return platform::LeftPaths(); };
};

class frmMain : public QMainWindow {
 public:
  // `memory_file`: where the window remembers how it looked; empty: nowhere.
  frmMain(clsPropItem& items, const clsPropDefault& standard, MainServices services,
          const std::string& memory_file);
  ~frmMain() override;

  // Shows the window until the user closes it.
  void Run();

  // Another copy has been started. The files that it has left undone are told at the end of a run, else at once.
  void TellOfOtherCopy();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void changeEvent(QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  void dragLeaveEvent(QDragLeaveEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  // What a command needs to have any sense.
  enum class Needs { kNothing, kRows, kSome, kOne };
  struct Command {
    QAction* action;
    Needs needs;
  };

  // Layout
  void MakeControls();
  void MakeMenus();
  QMenu* MakeMenu(TextId caption);
  QAction* AddCommand(QMenu* menu, TextId caption, const char* name, const QList<QKeySequence>& keys,
                      Needs needs, std::function<void()> act);
  void MakeProfileMenu();
  void MakeOtherMenus();
  void MakeToolBar();
  void AddOpenButton(QToolBar* bar);
  void MakeContextMenu();
  QLayout* MakeFields();
  void LetKeysBeTheLists(QAction* action);
  void Connect();
  void RestoreLooks();
  void KeepLooks() const;
  void ShowContextMenu(const QPoint& position);
  void ShowContextMenuAtRow();

  // State
  void Refresh(const std::string& select = "");
  void SelectRow(int row);
  bool SelectTitle(const std::string& title);
  void Select(const std::vector<std::string>& titles, const std::string& current);
  std::vector<int> SelectedRows() const;
  std::vector<std::string> SelectedTitles() const;
  std::string CurrentTitle() const;
  void ApplyFilter();
  void ApplyTest();
  void UpdateCommands();
  void UpdateTexts();
  void UpdateHint();
  QString StatusText() const;
  QString FilesStamp() const;
  bool HandleFieldKey(QLineEdit* field, int key);

  // Commands
  void Add();
  void Edit();
  void Rename();
  void Duplicate();
  void Remove();
  void OpenDestination(std::size_t kind);
  void OpenTester();
  void OpenSettings(EditMode mode);
  void Dispatch(const std::vector<std::string>& paths);
  bool Tell(const platform::Result& result);
  QRect TestPlace() const;
  bool TellsSurplus(std::vector<std::string>* paths);

  std::string items_file_;
  std::string settings_file_;
  MainServices services_;
  WindowMemory memory_;
  ProfileList list_;
  ProfileModel model_;

  QTreeView* view_ = nullptr;
  QLineEdit* filter_ = nullptr;
  QLineEdit* test_ = nullptr;
  ElidedLabel* status_ = nullptr;
  QLabel* hint_ = nullptr;  // in place of rows
  QMenu* context_menu_ = nullptr;
  QWidget* open_button_ = nullptr;
  std::vector<Command> commands_;
  QString stamp_;             // of the files when they were read
  std::string read_problem_;  // why there are no rows
  platform::LeftPaths left_;  // by other copies, until the user goes on
  QEventLoop* loop_ = nullptr;
  bool is_busy_ = false;  // a command runs, which may handle events
};

}  // namespace quendle
