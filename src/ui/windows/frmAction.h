// The action window: shows the current path of a run, its profiles and what is to be done, and does it.
#pragma once

#include <QDialog>
#include <QTimer>
#include <array>
#include <cstdint>
#include <exception>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/action_form.h"
#include "core/edit_mode.h"
#include "resources/string_table.h"
#include "ui/messages/modMsgBox.h"
#include "ui/parts/pickers.h"

class QAction;
class QCheckBox;
class QComboBox;
class QGroupBox;
class QKeyEvent;
class QLabel;
class QLineEdit;
class QMenu;
class QMenuBar;
class QPushButton;
class QRadioButton;

namespace quendle {

class PlanView;

// The other windows that the action window opens.
struct ActionServices {
  std::function<std::string(QWidget*, const std::string&, const std::string&)> pick_folder = PickFolder;
  MessageFunction show_message = ShowMessage;
  InputFunction show_input = ShowInput;
  // Opens the editor as OpenEditor does.
  std::function<std::optional<std::string>(QWidget*, EditMode, const std::string& title)> open_editor;
  std::function<void(QWidget*)> show_about;
};

class frmAction : public QDialog {
 public:
  // The controls by their places in their arrays, whose names they bear: "txt(1)" is the folder to extract into.
  enum Frame : std::size_t { kFileFrame, kSettingsFrame, kSpecialFrame, kProfileFrame, kFrames };
  enum Combo : std::size_t { kProfileCombo, kRenameCombo, kCombos };
  enum Check : std::size_t {
    kExtractCheck,
    kMoveCheck,
    kCopyCheck,
    kSmartMakeDirCheck,
    kOpenDirCheck,
    kChecks
  };
  enum Option : std::size_t { kOverwriteOption, kUpdateOption, kOptions };
  enum Field : std::size_t { kTargetField, kExtractField, kMoveField, kCopyField, kFields };
  enum Button : std::size_t {
    kCancelButton,
    kOkButton,
    kEditButton,
    kBrowseExtractButton,
    kBrowseMoveButton,
    kBrowseCopyButton,
    kButtons
  };
  enum Label : std::size_t {
    kTargetLabel,
    kExtractLabel,
    kMoveLabel,
    kCopyLabel,
    kRenameLabel,
    kExtractTypeLabel,
    kIncludeMark,
    kExcludeMark,
    kOpenFileMark,
    kLabels
  };
  enum Menu : std::size_t { kFileMenu, kEditMenu, kSettingsMenu, kHelpMenu, kMenus };
  // The commands of the menus, which do not count through.
  enum FileCommand { kExecute = 0, kSkip = 1, kQuit = 6 };
  enum EditCommand {
    kNextProfile = 0,
    kPreviousProfile = 1,
    kEditProfile = 11,
    kToggleExtract = 16,
    kToggleMove,
    kToggleCopy,
    kStepRename = 26
  };
  enum SettingsCommand { kStandardSettings = 0, kTestSettings = 1, kGeneralSettings = 6 };
  enum HelpCommand { kAbout = 0 };

  // `form` stands on the first path that the user is to settle.
  frmAction(ActionForm& form, const clsMover& mover, ActionServices services = {});
  ~frmAction() override;

  // Shows the window until no path is left or the user has ended the run. Throws what doing a path has thrown,
  // which ends the run, too.
  void Run();

  // Closing the window leaves the rest undone.
  void reject() override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  // A new plan may mean listing a large archive, which is not done at each key.
  static constexpr int kTypingPause = 150;  // milliseconds

  using Actions = std::map<int, QAction*>;

  // Layout
  void MakeControls();
  void SetTexts();
  void MakeMenus();
  struct MenuEntry {
    int command;
    TextId caption;  // kNone: a line between groups
  };
  QMenu* MakeMenu(TextId caption, const char* name, const std::vector<MenuEntry>& entries, Actions* actions);
  QLayout* MakeProfileFrame();
  QLayout* MakeFileFrame();
  QLayout* MakeSettingsFrame();
  QLayout* MakeSpecialFrame();
  QLayout* MakeButtons();
  void ArrangeControls();
  void FinishControls();
  void SetTabOrder();
  void LetMenusGoFirst();
  void PaintMarks();

  // State
  void Connect();
  void ConnectMenus();
  void Fill();
  void ApplyView();
  void ApplyPicture();
  void ApplyProfiles();
  void ApplyRows();
  void ApplyEditCommand();
  void ApplyFolder();
  void ApplyExtraction();
  void SchedulePlan(int milliseconds);
  void RenewPlan();

  // Commands
  std::function<void()> CommandOf(const QKeyEvent& key);
  void Finish(bool execute);
  void Exit();
  void ToggleRow(std::size_t row);
  void Browse(std::size_t row);
  void StepProfile(int step);
  void EditProfile();
  std::string NameNewProfile();
  void Edit(EditMode mode, const std::string& title);
  void PopUpSettings();
  void ClickLabel(std::size_t index);

  ActionForm& form_;
  const clsMover& mover_;
  ActionServices services_;

  QMenuBar* menu_bar_ = nullptr;
  QWidget* body_ = nullptr;  // everything below the menu bar
  PlanView* plan_ = nullptr;
  std::array<QGroupBox*, kFrames> fra{};
  std::array<QComboBox*, kCombos> cbo{};
  std::array<QCheckBox*, kChecks> chk{};
  std::array<QRadioButton*, kOptions> opt{};
  std::array<QLineEdit*, kFields> txt{};
  std::array<QPushButton*, kButtons> cmd{};
  std::array<QLabel*, kLabels> lbl{};
  std::array<QMenu*, kMenus> mnuMenu{};
  Actions mnuFile, mnuEdit, mnuOption, mnuAbout;

  QTimer plan_timer_{this};
  std::optional<bool> shows_archive_;  // in the window's picture
  bool shows_folder_ = false;          // as the controls are made
  bool is_painted_ = false;            // at least once
  bool is_busy_ = false;               // a command runs, which may handle events
  std::exception_ptr fault_;           // thrown while a path was done
};

}  // namespace quendle
