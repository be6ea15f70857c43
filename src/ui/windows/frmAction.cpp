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
  connect(cbo[kProfileCombo], &QComboBox::activated, this, [this](int index) {
    form_.SelectProfile(index);
    ApplyView();
  });
  connect(cbo[kRenameCombo], &QComboBox::activated, this, [this](int index) {
    form_.SelectRename(index);
    ApplyView();
  });
  for (std::size_t row = 0; row < kActionRows; ++row) {
    connect(chk[kExtractCheck + row], &QCheckBox::clicked, this, [this, row](bool ticked) {
      form_.Tick(row, ticked);
      ApplyView();
    });
    connect(txt[kExtractField + row], &QLineEdit::textEdited, this, [this, row](const QString& text) {
      form_.TypeFolder(row, FromQt(text));
      ApplyView();
      SchedulePlan(kTypingPause);
    });
    connect(cmd[kBrowseExtractButton + row], &QPushButton::clicked, this, [this, row] { Browse(row); });
  }
  connect(chk[kSmartMakeDirCheck], &QCheckBox::clicked, this, [this](bool on) {
    form_.SetSmartMakeDir(on);
    ApplyView();
  });
  connect(chk[kOpenDirCheck], &QCheckBox::clicked, this, [this](bool on) {
    form_.SetOpenDir(on);
    ApplyView();
  });
  for (std::size_t i = 0; i < opt.size(); ++i) {
    connect(opt[i], &QRadioButton::clicked, this, [this, i] {
      form_.SetOverwrites(i == kOverwriteOption);
      ApplyView();
    });
  }
  connect(cmd[kCancelButton], &QPushButton::clicked, this, [this] { Finish(false); });
  connect(cmd[kOkButton], &QPushButton::clicked, this, [this] { Finish(true); });
  connect(cmd[kEditButton], &QPushButton::clicked, this, [this] { EditProfile(); });
}

void frmAction::changeEvent(QEvent* event) {
  QDialog::changeEvent(event);
  if (event->type() == QEvent::PaletteChange && lbl[kOpenFileMark] != nullptr) PaintMarks();
  // Whoever comes back may have made room for a file, or put one in its way.
  if (event->type() == QEvent::ActivationChange && isActiveWindow() && plan_ != nullptr) SchedulePlan(0);
}

// Listing a large archive takes a while: the window is there first.
void frmAction::paintEvent(QPaintEvent* event) {
  QDialog::paintEvent(event);
  if (!std::exchange(is_painted_, true)) SchedulePlan(0);
}

void frmAction::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  LetMenusGoFirst();
  setAttribute(Qt::WA_KeyboardFocusChange);  // the focus is seen from the beginning, not only after a key
}

// The window for a path that it has not shown yet.
void frmAction::Fill() {
  ApplyView();
  QWidget* first =
      cbo[kProfileCombo]->count() > 1 ? static_cast<QWidget*>(cbo[kProfileCombo]) : cmd[kOkButton];
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
  cbo[kRenameCombo]->setCurrentIndex(view.rename);
  for (QWidget* control :
       {static_cast<QWidget*>(cbo[kRenameCombo]), static_cast<QWidget*>(lbl[kRenameLabel])}) {
    control->setEnabled(view.can_rename);
  }
  mnuEdit[kStepRename]->setEnabled(view.can_rename && !view.is_folder);
  const bool is_usable = view.problem.empty();
  cmd[kOkButton]->setEnabled(is_usable);
  mnuFile[kExecute]->setEnabled(is_usable);
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
  for (int i = 0; i < cbo[kProfileCombo]->count(); ++i) shown += cbo[kProfileCombo]->itemText(i);
  if (shown != wanted) {
    cbo[kProfileCombo]->clear();
    cbo[kProfileCombo]->addItems(wanted);
  }
  cbo[kProfileCombo]->setCurrentIndex(view.selected);
  for (const int step : {kNextProfile, kPreviousProfile}) mnuEdit[step]->setEnabled(wanted.size() > 1);
}

void frmAction::ApplyRows() {
  const ActionView& view = form_.View();
  ShowPath(txt[kTargetField], view.target);
  for (std::size_t i = 0; i < kActionRows; ++i) {
    const ActionView::Row& row = view.rows[i];
    chk[kExtractCheck + i]->setChecked(row.is_ticked);
    chk[kExtractCheck + i]->setEnabled(row.can_tick);
    lbl[kExtractLabel + i]->setEnabled(row.can_tick);
    mnuEdit[kToggleExtract + static_cast<int>(i)]->setEnabled(row.can_tick);
    ShowPath(txt[kExtractField + i], row.folder);
    txt[kExtractField + i]->setEnabled(row.can_fill);
    cmd[kBrowseExtractButton + i]->setEnabled(row.can_fill);
  }
}

void frmAction::ApplyEditCommand() {
  const bool edits = form_.View().edits_profile;
  cmd[kEditButton]->setText(Text(edits ? TextId::kActionEditProfile : TextId::kActionNewProfile));
  cmd[kEditButton]->setToolTip(Text(edits ? TextId::kActionEditProfileHint : TextId::kActionNewProfileHint));
  mnuEdit[kEditProfile]->setText(
      Text(edits ? TextId::kActionMenuEditProfile : TextId::kActionMenuNewProfile));
}

void frmAction::ApplyExtraction() {
  const ActionView& view = form_.View();
  opt[kOverwriteOption]->setChecked(view.overwrites);
  opt[kUpdateOption]->setChecked(!view.overwrites);
  chk[kSmartMakeDirCheck]->setChecked(view.smart_make_dir);
  chk[kOpenDirCheck]->setChecked(view.open_dir);
  const std::initializer_list<QWidget*> controls = {lbl[kExtractTypeLabel], opt[kOverwriteOption],
                                                    opt[kUpdateOption], chk[kSmartMakeDirCheck],
                                                    chk[kOpenDirCheck]};
  for (QWidget* control : controls) control->setEnabled(view.can_set_extraction);
  for (std::size_t i = 0; i < view.marks.size(); ++i) {
    lbl[kIncludeMark + i]->setVisible(!view.marks[i].empty());
    lbl[kIncludeMark + i]->setToolTip(PlainToolTip(ToQt(view.marks[i])));
  }
}

// A folder has nothing to be extracted and no profile of its own. The height follows; the width is the
// user's.
void frmAction::ApplyFolder() {
  const bool is_folder = form_.View().is_folder;
  if (std::exchange(shows_folder_, is_folder) != is_folder) {
    const std::initializer_list<QWidget*> controls = {
        fra[kSettingsFrame], fra[kSpecialFrame],        lbl[kExtractLabel], chk[kExtractCheck],
        txt[kExtractField],  cmd[kBrowseExtractButton], cmd[kEditButton]};
    for (QWidget* control : controls) control->setVisible(!is_folder);
    mnuEdit[kEditProfile]->setVisible(!is_folder);
    mnuEdit[kToggleExtract]->setVisible(!is_folder);
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
