// The editor of one profile, of the standard and test settings, and of the general settings.
#pragma once

#include <QBoxLayout>
#include <QDialog>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "core/edit_draft.h"
#include "core/modMain.h"
#include "platform/services/known_folders.h"
#include "ui/messages/modMsgBox.h"
#include "ui/parts/pickers.h"
#include "ui/windows/frmRegex.h"

class QCheckBox;
class QComboBox;
class QGridLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace quendle {

// Opens the editor, modal to `owner`. `title`: of the profile, where `mode` is for one. When something was saved: the
// title of that profile, empty for settings; else nothing.
std::optional<std::string> OpenEditor(QWidget* owner, Globals& globals, EditMode mode,
                                      const std::string& title);

// The other windows that the editor opens.
struct EditServices {
  std::function<std::string(QWidget*, const std::string&, const std::string&)> pick_folder = PickFolder;
  std::function<std::string(QWidget*, const FileDialogRequest&)> pick_file = ShowFileDialog;
  MessageFunction show_message = ShowMessage;
  std::function<void(QWidget*, const std::string&, const std::string&)> open_tester = OpenRegexTester;
  std::string program = platform::ExecutablePath();  // for the menus of file managers
};

// The controls are named after the keys: "txt.MoveTo", "chk.OpenDir", "opt.SmartRename.2", "cmd.MoveTo",
// "hint.MoveTo".
class frmEdit : public QDialog {
 public:
  // `target`: the file at hand, if it has a name.
  frmEdit(QWidget* owner, EditDraft& draft, const clsFileInfo& target, EditServices services = {});

  // Cancel, Esc, Ctrl+W and the close box: asks when something has changed.
  void reject() override;

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  // Layout
  QWidget* MakePatternGroup();
  QWidget* MakeBehaviourGroup();
  QWidget* MakeFolderGroup();
  QWidget* MakeMemberGroup();
  QWidget* MakeGeneralGroup();
  QWidget* MakeFilerGroup();
  QWidget* MakeCharsetGroup();
  QLayout* MakeButtons();
  QLayout* MakeColumns();
  QWidget* MakeGroup(TextId caption, QLayout* layout);
  QPushButton* MakeButton(const char* name, TextId caption, TextId tool_tip,
                          TextId accessible_name = TextId::kNone);
  QCheckBox* MakeCheckBox(TextId key);
  struct ChoiceTexts {
    TextId caption, tool_tip;
  };
  QWidget* MakeChoices(TextId key, QBoxLayout::Direction direction, const std::vector<ChoiceTexts>& texts);
  QWidget* MakeActions();
  void AddChoiceRow(QGridLayout* grid, TextId key, QWidget* choices);
  void AddField(QGridLayout* grid, TextId key, QPushButton* button = nullptr);
  void Register(TextId key, QLineEdit* field);
  QLabel* MakeHint(TextId key);
  void ArrangeControls();
  QString Name(const char* kind, TextId key) const;

  // State
  void Connect();
  void Fill();
  void FocusOnFirst();
  std::int16_t Action() const;
  void ApplyNumbers();
  void ApplyHint(TextId key);
  void PaintHints();
  void ShowSendTo();

  // Commands
  bool IsFitForSettings(const std::string& picked);
  void Put(TextId key, const std::string& text);
  void BrowseFolder(TextId key);
  void BrowseFiler();
  void ProposePattern();
  void TryPattern();
  void SwitchSendTo();
  void Save();
  bool MaySave();
  bool Settle(const EditDraft::Comparison& comparison);
  bool AskWhoseValue(const EditDraft::Comparison::Conflict& conflict);
  void TellOthersChanges();
  void FocusOn(TextId key);
  bool Ask(const std::string& question);
  void Tell(const std::string& text, std::int32_t icon);

  EditDraft& draft_;
  const clsFileInfo& target_;
  std::string example_name_;  // of the file that a pattern was proposed for, when there is no target
  EditServices services_;

  std::map<TextId, QLineEdit*> txt;
  std::map<TextId, QCheckBox*> chk;
  std::map<StepKind, QCheckBox*> chkAction;
  std::map<TextId, std::map<int, QRadioButton*>> opt;  // by key and number
  std::map<TextId, QPushButton*> cmdFolder;
  std::map<TextId, QLabel*> hint;
  std::vector<QWidget*> own_;  // what is dimmed while it is inherited
  QComboBox* cboCharset = nullptr;
  QPushButton* cmdFiler = nullptr;
  QPushButton* cmdSendTo = nullptr;
  QPushButton* cmdPropose = nullptr;
  QPushButton* cmdTest = nullptr;
  QPushButton* cmdOk = nullptr;
  QPushButton* cmdCancel = nullptr;
  bool is_filling_ = false;
  bool is_busy_ = false;  // a window is open above this one
};

}  // namespace quendle
