#include "ui/windows/frmAction.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QGroupBox>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>

#include "resources/string_table.h"
#include "ui/parts/form_helpers.h"
#include "ui/parts/hints.h"
#include "ui/parts/pictures.h"
#include "ui/parts/text.h"
#include "ui/windows/plan_view.h"

namespace quendle {
namespace {

// The cursor stays where it is when the user is typing there.
void ShowPath(QLineEdit* field, const std::string& shown) {
  if (FromQt(field->text()) != shown) field->setText(ToQt(shown));
}

}  // namespace

frmAction::frmAction(ActionForm& form, const clsMover& mover, ActionServices services)
    : form_(form), mover_(mover), services_(std::move(services)) {
  setWindowFlag(Qt::WindowContextHelpButtonHint, false);
  setWindowFlag(Qt::WindowMinimizeButtonHint);
  MakeControls();
  MakeMenus();
  ApplyFormFont(this, true);
  SetTexts();
  ArrangeControls();
  FinishControls();
  Connect();
  ConnectMenus();
  installEventFilter(this);
  for (QWidget* control : findChildren<QWidget*>()) control->installEventFilter(this);
  plan_timer_.setObjectName("planPause");
  plan_timer_.setSingleShot(true);
  plan_timer_.callOnTimeout(this, [this] { RenewPlan(); });
  Fill();
}

frmAction::~frmAction() = default;

void frmAction::Run() {
  CentreOnScreen(this);
  exec();
  if (fault_) std::rethrow_exception(std::exchange(fault_, nullptr));
}

// Only signals that the user causes, so that showing a view changes nothing.
void frmAction::Connect() {
  connect(cbo[0], &QComboBox::activated, this, [this](int index) {
    form_.SelectProfile(index);
    ApplyView();
  });
  connect(cbo[1], &QComboBox::activated, this, [this](int index) {
    form_.SelectRename(index);
    ApplyView();
  });
  for (std::size_t row = 0; row < kActionRows; ++row) {
    connect(chk[row], &QCheckBox::clicked, this, [this, row](bool ticked) {
      form_.Tick(row, ticked);
      ApplyView();
    });
    connect(txt[row + 1], &QLineEdit::textEdited, this, [this, row](const QString& text) {
      form_.TypeFolder(row, FromQt(text));
      ApplyView();
      SchedulePlan(kTypingPause);
    });
    connect(cmd[row + 3], &QPushButton::clicked, this, [this, row] { Browse(row); });
  }
  connect(chk[3], &QCheckBox::clicked, this, [this](bool on) {
    form_.SetSmartMakeDir(on);
    ApplyView();
  });
  connect(chk[4], &QCheckBox::clicked, this, [this](bool on) {
    form_.SetOpenDir(on);
    ApplyView();
  });
  for (std::size_t i = 0; i < opt.size(); ++i) {
    connect(opt[i], &QRadioButton::clicked, this, [this, i] {
      form_.SetOverwrites(i == 0);
      ApplyView();
    });
  }
  connect(cmd[0], &QPushButton::clicked, this, [this] { Finish(false); });
  connect(cmd[1], &QPushButton::clicked, this, [this] { Finish(true); });
  connect(cmd[2], &QPushButton::clicked, this, [this] { EditProfile(); });
}

void frmAction::changeEvent(QEvent* event) {
  QDialog::changeEvent(event);
  if (event->type() == QEvent::PaletteChange && lbl[8] != nullptr) PaintMarks();
  // Whoever comes back may have made room for a file, or put one in its way.
  if (event->type() == QEvent::ActivationChange && isActiveWindow() && plan_ != nullptr) SchedulePlan(0);
}

void frmAction::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  LetMenusGoFirst();
  setAttribute(Qt::WA_KeyboardFocusChange);  // the focus is seen from the beginning, not only after a key
}

// The window for a path that it has not shown yet.
void frmAction::Fill() {
  ApplyView();
  QWidget* first = cbo[0]->count() > 1 ? static_cast<QWidget*>(cbo[0]) : cmd[1];
  first->setFocus(Qt::OtherFocusReason);
}

void frmAction::ApplyView() {
  const ActionView& view = form_.View();
  ApplyPicture();
  // Qt reads "[*]" in a title as the place of a mark for unsaved changes, unless it is doubled.
  setWindowTitle(ToQt(view.title).replace("[*]", "[*][*]"));
  ApplyProfiles();
  ApplyRows();
  ApplyEditCommand();
  ApplyExtraction();
  cbo[1]->setCurrentIndex(view.rename);
  for (QWidget* control : {static_cast<QWidget*>(cbo[1]), static_cast<QWidget*>(lbl[4])}) {
    control->setEnabled(view.can_rename);
  }
  mnuEdit[26]->setEnabled(view.can_rename && !view.is_folder);
  const bool is_usable = view.problem.empty();
  cmd[1]->setEnabled(is_usable);
  mnuFile[0]->setEnabled(is_usable);
  ApplyFolder();
  SchedulePlan(0);
}

void frmAction::ApplyPicture() {
  if (shows_archive_ == form_.View().is_archive) return;
  shows_archive_ = form_.View().is_archive;
  QTimer::singleShot(kAfterFirstPaint, this,
                     [this] { setWindowIcon(Picture(shows_archive_.value() ? "archive" : "quendle")); });
}

void frmAction::ApplyProfiles() {
  const ActionView& view = form_.View();
  QStringList wanted;
  for (const std::string& profile : view.profiles) wanted += ToQt(profile);
  QStringList shown;
  for (int i = 0; i < cbo[0]->count(); ++i) shown += cbo[0]->itemText(i);
  if (shown != wanted) {
    cbo[0]->clear();
    cbo[0]->addItems(wanted);
  }
  cbo[0]->setCurrentIndex(view.selected);
  for (const int step : {0, 1}) mnuEdit[step]->setEnabled(wanted.size() > 1);
}

void frmAction::ApplyRows() {
  const ActionView& view = form_.View();
  ShowPath(txt[0], view.target);
  for (std::size_t i = 0; i < kActionRows; ++i) {
    const ActionView::Row& row = view.rows[i];
    chk[i]->setChecked(row.is_ticked);
    chk[i]->setEnabled(row.can_tick);
    lbl[i + 1]->setEnabled(row.can_tick);
    mnuEdit[static_cast<int>(i) + 16]->setEnabled(row.can_tick);
    ShowPath(txt[i + 1], row.folder);
    txt[i + 1]->setEnabled(row.can_fill);
    cmd[i + 3]->setEnabled(row.can_fill);
  }
}

void frmAction::ApplyEditCommand() {
  const bool edits = form_.View().edits_profile;
  cmd[2]->setText(Text(edits ? 4215 : 4213));
  cmd[2]->setToolTip(Text(edits ? 4216 : 4214));
  mnuEdit[11]->setText(Text(edits ? 4651 : 4650));
}

void frmAction::ApplyExtraction() {
  const ActionView& view = form_.View();
  opt[0]->setChecked(view.overwrites);
  opt[1]->setChecked(!view.overwrites);
  chk[3]->setChecked(view.smart_make_dir);
  chk[4]->setChecked(view.open_dir);
  const std::initializer_list<QWidget*> controls = {lbl[5], opt[0], opt[1], chk[3], chk[4]};
  for (QWidget* control : controls) control->setEnabled(view.can_set_extraction);
  for (std::size_t i = 0; i < view.marks.size(); ++i) {
    lbl[i + 6]->setVisible(!view.marks[i].empty());
    lbl[i + 6]->setToolTip(PlainToolTip(ToQt(view.marks[i])));
  }
}

// A folder has nothing to be extracted and no profile of its own. The height follows; the width is the
// user's.
void frmAction::ApplyFolder() {
  const bool is_folder = form_.View().is_folder;
  if (std::exchange(shows_folder_, is_folder) != is_folder) {
    const std::initializer_list<QWidget*> controls = {fra[1], fra[2], lbl[1], chk[0], txt[1], cmd[3], cmd[2]};
    for (QWidget* control : controls) control->setVisible(!is_folder);
    mnuEdit[11]->setVisible(!is_folder);
    mnuEdit[16]->setVisible(!is_folder);
  }
  if (isVisible()) {  // what is not shown yet has no sizes that could be out of date
    for (QGroupBox* frame : fra) frame->layout()->activate();
    body_->layout()->activate();
    layout()->activate();
  }
  setFixedHeight(layout()->totalSizeHint().height());
  if (isVisible()) KeepOnScreen(this);
}

void frmAction::SchedulePlan(int milliseconds) {
  plan_timer_.start(milliseconds);
}

}  // namespace quendle
