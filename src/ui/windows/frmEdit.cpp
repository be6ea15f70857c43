#include "ui/windows/frmEdit.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QShortcut>

#include "base/display.h"
#include "base/modSystem.h"
#include "core/edit_keys.h"
#include "resources/string_table.h"
#include "settings/run_settings.h"
#include "settings/setting_keys.h"
#include "ui/messages/modMsgBox.h"
#include "ui/parts/form_helpers.h"
#include "ui/parts/hints.h"
#include "ui/parts/text.h"

namespace quendle {
namespace {

QString Caption(const EditDraft& draft) {
  const auto of_profile = [&draft](TextId id) {
    // Qt reads "[*]" in a title as the place of a mark for unsaved changes, unless it is doubled.
    return ToQt(LoadText(id, {ForDisplay(draft.Title())})).replace("[*]", "[*][*]");
  };
  switch (draft.Mode()) {
    case EditMode::kProfile:
      return of_profile(TextId::kEditorCaptionProfile);
    case EditMode::kNew:
      return of_profile(TextId::kEditorCaptionNew);
    case EditMode::kStandard:
      return Text(TextId::kEditorCaptionStandard);
    case EditMode::kGeneral:
      return Text(TextId::kEditorCaptionGeneral);
    default:
      return Text(TextId::kEditorCaptionTest);
  }
}

}  // namespace

std::optional<std::string> OpenEditor(QWidget* owner, Globals& globals, EditMode mode,
                                      const std::string& title) {
  // Nobody should go by values, or save them, that stand for what could not be read.
  std::shared_ptr<const SettingsSnapshot> settings;
  const platform::Result read = RunSettings(globals.g_PropDefault->Folders()).Read(&settings);
  if (!read.ok()) {
    (void)ShowMessage(LoadText(TextId::kProfilesUnreadable,
                               {ForDisplay(LoadText(read.reason)) + "\r\n" + ForDisplay(read.path)}),
                      kButtonsOk, kIconExclamation, "");
    return std::nullopt;
  }
  EditDraft draft(mode, title, {*globals.g_PropItem, *globals.g_PropDefault, *globals.g_PropTest});
  frmEdit window(owner, draft, *globals.g_FileInfo);
  window.exec();
  if (!draft.IsSaved()) return std::nullopt;
  return draft.IsProfile() ? draft.Title() : "";
}

frmEdit::frmEdit(QWidget* owner, EditDraft& draft, const clsFileInfo& target, EditServices services)
    : QDialog(owner), draft_(draft), target_(target), services_(std::move(services)) {
  setWindowFlag(Qt::WindowContextHelpButtonHint, false);
  setWindowTitle(Caption(draft_));
  setFont(DialogFont());
  ArrangeControls();
  ApplyFormFont(this, true);
  Connect();
  Fill();
  FocusOnFirst();
  CentreOnScreen(this);
}

// Only what the user does, and what a picker or a proposal puts in for him.
void frmEdit::Connect() {
  for (const auto& [key, field] : txt) {
    connect(field, &QLineEdit::textChanged, this, [this, key = key](const QString& text) {
      if (!is_filling_) draft_.SetText(key, FromQt(text));
      ApplyHint(key);
    });
  }
  for (const auto& [key, box] : chk) {
    connect(box, &QCheckBox::clicked, this, [this, key = key](bool on) {
      draft_.SetNumber(key, on ? 1 : 0);
      ApplyNumbers();
    });
  }
  for (const auto& [kind, box] : chkAction) {
    connect(box, &QCheckBox::clicked, this, [this, kind = kind](bool on) {
      draft_.SetNumber(TextId::kAction, WithStep(Action(), kind, on));
    });
  }
  for (const auto& [key, choices] : opt) {
    for (const auto& [number, choice] : choices) {
      connect(choice, &QRadioButton::clicked, this,
              [this, key = key, number = number] { draft_.SetNumber(key, number); });
    }
  }
  for (const auto& [key, button] : cmdFolder) {
    connect(button, &QPushButton::clicked, this, [this, key = key] { BrowseFolder(key); });
  }
  if (cmdFiler != nullptr) connect(cmdFiler, &QPushButton::clicked, this, [this] { BrowseFiler(); });
  if (cmdSendTo != nullptr) connect(cmdSendTo, &QPushButton::clicked, this, [this] { SwitchSendTo(); });
  if (cmdPropose != nullptr) connect(cmdPropose, &QPushButton::clicked, this, [this] { ProposePattern(); });
  if (cmdTest != nullptr) connect(cmdTest, &QPushButton::clicked, this, [this] { TryPattern(); });
  connect(cmdOk, &QPushButton::clicked, this, [this] { Save(); });
  connect(cmdCancel, &QPushButton::clicked, this, [this] { reject(); });
  const auto on_key = [this](const QKeySequence& keys, const std::function<void()>& command) {
    auto* shortcut = new QShortcut(keys, this);
    shortcut->setAutoRepeat(false);
    connect(shortcut, &QShortcut::activated, this, command);
  };
  on_key(Qt::CTRL | Qt::Key_Return, [this] { Save(); });
  on_key(Qt::CTRL | Qt::Key_Enter, [this] { Save(); });
  on_key(Qt::CTRL | Qt::Key_W, [this] { reject(); });
}

// All controls as the draft says.
void frmEdit::Fill() {
  is_filling_ = true;
  for (const auto& [key, field] : txt) {
    field->setText(ToQt(draft_.Text(key)));
    field->setCursorPosition(0);
    if (KeyOf(key).kind == SettingKey::Kind::kFolder) {
      field->setPlaceholderText(ToQt(ForDisplay(draft_.InheritedFolder(key))));
    }
    ApplyHint(key);
  }
  is_filling_ = false;
  ApplyNumbers();
}

std::int16_t frmEdit::Action() const {
  return static_cast<std::int16_t>(draft_.Number(TextId::kAction));
}

void frmEdit::ApplyNumbers() {
  for (const auto& [key, box] : chk) box->setChecked(draft_.Number(key) != 0);
  for (const auto& [kind, box] : chkAction) box->setChecked(Includes(Action(), kind));
  for (const auto& [key, choices] : opt) choices.at(draft_.Number(key))->setChecked(true);
  const bool is_own = own_.empty() || !draft_.IsInherited(TextId::kSmartRename);
  for (QWidget* control : own_) control->setEnabled(is_own);
}

void frmEdit::ApplyHint(TextId key) {
  const std::optional<EditDraft::Problem> problem = draft_.ProblemOf(key);
  const QString text = problem ? ToQt(problem->text) : QString();
  hint[key]->setText(text);
  hint[key]->setVisible(problem.has_value());
  txt[key]->setAccessibleDescription(text);
}

// The colour follows the theme.
void frmEdit::PaintHints() {
  QPalette warning;
  warning.setColor(QPalette::WindowText, WarningColour(warning));
  for (const auto& [key, label] : hint) label->setPalette(warning);
}

void frmEdit::changeEvent(QEvent* event) {
  QDialog::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) PaintHints();
}

// A key that is still held down from the window before is not meant for this one.
void frmEdit::keyPressEvent(QKeyEvent* event) {
  const bool ends =
      event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Escape;
  if (!ends || !event->isAutoRepeat()) QDialog::keyPressEvent(event);
}

// Of choices that exclude each other the one that is made.
void frmEdit::FocusOnFirst() {
  const TextId first = draft_.Keys().front();
  if (opt.count(first) != 0) opt[first].at(draft_.Number(first))->setFocus(Qt::OtherFocusReason);
  FocusOn(first);
}

void frmEdit::FocusOn(TextId key) {
  if (txt.count(key) != 0) txt[key]->setFocus(Qt::OtherFocusReason);
}

}  // namespace quendle
