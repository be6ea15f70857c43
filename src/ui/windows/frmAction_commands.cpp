// What the action window does when the user wants something.
#include <QComboBox>
#include <QCursor>
#include <QGuiApplication>
#include <QInputMethod>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMouseEvent>
#include <QPushButton>
#include <algorithm>

#include "core/profile_list.h"
#include "resources/string_table.h"
#include "ui/parts/busy.h"
#include "ui/parts/text.h"
#include "ui/windows/ask_title.h"
#include "ui/windows/frmAction.h"
#include "ui/windows/plan_view.h"

namespace quendle {
namespace {

bool IsInput(QEvent::Type type) {
  constexpr QEvent::Type kInput[] = {
      QEvent::KeyPress,           QEvent::KeyRelease,          QEvent::MouseButtonPress,
      QEvent::MouseButtonRelease, QEvent::MouseButtonDblClick, QEvent::Wheel,
      QEvent::Shortcut,           QEvent::ShortcutOverride,    QEvent::ContextMenu,
      QEvent::InputMethod};
  return std::find(std::begin(kInput), std::end(kInput), type) != std::end(kInput);
}

}  // namespace

// The window sees its keys before its controls do.
bool frmAction::eventFilter(QObject* watched, QEvent* event) {
  if (is_busy_) return IsInput(event->type());
  switch (event->type()) {
    case QEvent::ShortcutOverride:
      if (!CommandOf(*static_cast<QKeyEvent*>(event))) return false;
      event->accept();
      return true;
    case QEvent::KeyPress: {
      const auto& key = *static_cast<QKeyEvent*>(event);
      const std::function<void()> command = CommandOf(key);
      if (!command) return false;
      if (!key.isAutoRepeat()) command();
      return true;
    }
    case QEvent::MouseButtonDblClick:
      // The first click of the two has ended the path.
      return watched == cmd[kCancelButton] || watched == cmd[kOkButton];
    case QEvent::MouseButtonRelease: {
      const auto* label = qobject_cast<QLabel*>(watched);
      const auto& mouse = *static_cast<QMouseEvent*>(event);
      const auto found = std::find(lbl.begin(), lbl.end(), label);
      if (found == lbl.end() || mouse.button() != Qt::LeftButton) return false;
      if (!label->rect().contains(mouse.position().toPoint())) return false;
      ClickLabel(static_cast<std::size_t>(found - lbl.begin()));
      return true;
    }
    default:
      return false;
  }
}

// Empty for a key that is left to the controls.
std::function<void()> frmAction::CommandOf(const QKeyEvent& key) {
  const Qt::KeyboardModifiers modifiers = key.modifiers() & ~Qt::KeypadModifier;
  if (modifiers != Qt::ControlModifier) return {};
  switch (key.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return [this] { Finish(true); };
    case Qt::Key_W:
      return [this] { Exit(); };
    case Qt::Key_1:
    case Qt::Key_2:
    case Qt::Key_3:
      return [this, row = static_cast<std::size_t>(key.key() - Qt::Key_1)] { ToggleRow(row); };
    case Qt::Key_U:
      return [this] { PopUpSettings(); };
    default:
      return {};
  }
}

void frmAction::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier) {
    cmd[kCancelButton]->click();
  } else {
    QDialog::keyPressEvent(event);
  }
}

void frmAction::closeEvent(QCloseEvent* event) {
  Exit();
  event->setAccepted(!isVisible());
}

void frmAction::reject() {
  Exit();
}

void frmAction::ConnectMenus() {
  const auto on = [this](const Actions& menu, int index, const std::function<void()>& command) {
    connect(menu.at(index), &QAction::triggered, this, command);
  };
  on(mnuFile, kExecute, [this] { Finish(true); });
  on(mnuFile, kSkip, [this] { Finish(false); });
  on(mnuFile, kQuit, [this] { Exit(); });
  on(mnuEdit, kNextProfile, [this] { StepProfile(1); });
  on(mnuEdit, kPreviousProfile, [this] { StepProfile(-1); });
  on(mnuEdit, kEditProfile, [this] { EditProfile(); });
  for (const int row : {0, 1, 2}) {
    on(mnuEdit, kToggleExtract + row, [this, row] { ToggleRow(static_cast<std::size_t>(row)); });
  }
  on(mnuEdit, kStepRename, [this] {
    form_.StepRename();
    ApplyView();
  });
  on(mnuOption, kStandardSettings, [this] { Edit(EditMode::kStandard, ""); });
  on(mnuOption, kTestSettings, [this] { Edit(EditMode::kTest, ""); });
  on(mnuOption, kGeneralSettings, [this] { Edit(EditMode::kGeneral, ""); });
  on(mnuAbout, kAbout, [this] {
    const Busy busy(&is_busy_);
    services_.show_about(this);
  });
}

// Ends the current path and goes on to the next one.
void frmAction::Finish(bool execute) {
  if (is_busy_ || (execute && !form_.View().problem.empty())) return;
  QGuiApplication::inputMethod()->commit();  // what is being typed counts
  QWidget* focus = focusWidget();
  bool is_over = false;
  {
    const Busy busy(&is_busy_);
    plan_timer_.stop();
    menu_bar_->setEnabled(false);
    body_->setEnabled(false);
    // The toolkit does not bear what is thrown through it.
    try {
      bool is_settled = true;
      if (execute) {
        is_settled = form_.Execute();
      } else {
        form_.Skip();
      }
      if (is_settled) {
        for (QLineEdit* field : txt) field->clear();
        for (QComboBox* combo : cbo) combo->setCurrentIndex(-1);
        focus = nullptr;
        is_over = !form_.Advance();
      }
    } catch (...) {
      fault_ = std::current_exception();
      is_over = true;
    }
    // What was typed and clicked while it ran was not meant for the next path.
    QCoreApplication::processEvents();
    body_->setEnabled(true);
    menu_bar_->setEnabled(true);
  }
  if (is_over) {
    done(Accepted);
  } else if (focus != nullptr) {
    ApplyView();
    focus->setFocus(Qt::OtherFocusReason);
  } else {
    Fill();
  }
}

void frmAction::Exit() {
  if (is_busy_) return;
  plan_timer_.stop();
  form_.SkipRest();
  done(Rejected);
}

void frmAction::ToggleRow(std::size_t row) {
  if (!form_.View().rows[row].can_tick) return;
  const bool wants_focus = form_.ToggleRow(row);
  ApplyView();
  if (wants_focus) txt[kExtractField + row]->setFocus(Qt::OtherFocusReason);
}

void frmAction::Browse(std::size_t row) {
  constexpr TextId kPrompts[kActionRows] = {TextId::kAskExtractFolder, TextId::kAskMoveFolder,
                                            TextId::kAskCopyFolder};
  std::string folder;
  {
    const Busy busy(&is_busy_);
    folder = services_.pick_folder(this, LoadText(kPrompts[row]), form_.StartFolder(row));
  }
  txt[kExtractField + row]->setFocus(Qt::OtherFocusReason);
  if (folder.empty()) return;
  form_.ChooseFolder(row, folder);
  ApplyView();
  txt[kExtractField + row]->selectAll();
}

void frmAction::StepProfile(int step) {
  if (form_.View().profiles.empty()) return;
  form_.StepProfile(step);
  ApplyView();
}

void frmAction::EditProfile() {
  if (form_.View().edits_profile) {
    Edit(EditMode::kProfile, form_.SelectedTitle());
  } else if (const std::string title = NameNewProfile(); !title.empty()) {
    Edit(EditMode::kNew, title);
  }
}

std::string frmAction::NameNewProfile() {
  const Busy busy(&is_busy_);
  const TitleQuestion question = NewTitleQuestion([this](const std::string& title) {
    std::string problem = TitleProblem(title);
    return problem.empty() && mover_.CheckDupTitle(title) ? LoadText(TextId::kSameProfileName) : problem;
  });
  return AskTitle(question, services_.show_input, services_.show_message);
}

void frmAction::Edit(EditMode mode, const std::string& title) {
  std::optional<std::string> saved;
  {
    const Busy busy(&is_busy_);
    saved = services_.open_editor(this, mode, title);
  }
  if (!saved) return;
  form_.Reload(saved->empty() ? form_.SelectedTitle() : *saved);
  Fill();
}

void frmAction::PopUpSettings() {
  const QPoint pointer = QCursor::pos();
  // Far from the window nobody would look for it.
  const QPoint near_window = body_->mapToGlobal(QPoint(0, 0));
  mnuMenu[kSettingsMenu]->popup(frameGeometry().contains(pointer) ? pointer : near_window);
}

void frmAction::ClickLabel(std::size_t index) {
  if (index >= kExtractLabel && index <= kCopyLabel) ToggleRow(index - kExtractLabel);
  if (index == kRenameLabel) cbo[kRenameCombo]->setFocus(Qt::MouseFocusReason);
}

// What OK will do is told by what would do it.
void frmAction::RenewPlan() {
  if (!is_painted_) return;
  if (is_busy_) {
    SchedulePlan(kTypingPause);
    return;
  }
  const Busy busy(&is_busy_);
  const std::string& problem = form_.View().problem;
  if (problem.empty()) {
    plan_->Show(PlanLines(form_.Plan()));
  } else {
    plan_->ShowProblem(problem);
  }
}

}  // namespace quendle
