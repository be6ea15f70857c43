// The controls of the action window: their texts and where they stand.
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <tuple>
#include <type_traits>

#include "resources/string_table.h"
#include "ui/parts/form_helpers.h"
#include "ui/parts/hints.h"
#include "ui/parts/text.h"
#include "ui/windows/frmAction.h"
#include "ui/windows/plan_view.h"

namespace quendle {
namespace {

using enum TextId;

struct ControlTexts {
  TextId caption;
  TextId tool_tip = kNone;
  TextId name = kNone;  // for those who hear the window, where the caption does not say it
};

// In the order of the controls.
constexpr ControlTexts kFrameTexts[frmAction::kFrames] = {{kActionFileFrame, kActionFileFrameHint},
                                                          {kActionSettingsFrame, kActionSettingsFrameHint},
                                                          {kActionSpecialFrame, kActionSpecialFrameHint},
                                                          {kActionProfileFrame, kActionProfileFrameHint}};
constexpr ControlTexts kComboTexts[frmAction::kCombos] = {{kNone, kActionProfileHint, kActionProfileName},
                                                          {kNone, kActionRenameHint, kActionRenameName}};
constexpr ControlTexts kCheckTexts[frmAction::kChecks] = {{kNone, kActionExtractHint, kActionExtractName},
                                                          {kNone, kActionMoveHint, kActionMoveName},
                                                          {kNone, kActionCopyHint, kActionCopyName},
                                                          {kActionSmartMakeDir, kSmartMakeDirHint},
                                                          {kActionOpenDir, kOpenDirHint}};
constexpr ControlTexts kOptionTexts[frmAction::kOptions] = {{kOverwriteChoice, kOverwriteChoiceHint},
                                                            {kUpdateChoice, kUpdateChoiceHint}};
constexpr ControlTexts kFieldTexts[frmAction::kFields] = {
    {kNone, kActionTargetFieldHint, kActionTargetFieldName},
    {kNone, kActionExtractFieldHint, kActionExtractFieldName},
    {kNone, kActionMoveFieldHint, kActionMoveFieldName},
    {kNone, kActionCopyFieldHint, kActionCopyFieldName}};
constexpr ControlTexts kButtonTexts[frmAction::kButtons] = {
    {kCancel},
    {kActionOk},
    {kActionNewProfile, kActionNewProfileHint},
    {kBrowseExtractFolder, kBrowseExtractFolderHint, kBrowseExtractFolderName},
    {kBrowseMoveFolder, kBrowseMoveFolderHint, kBrowseMoveFolderName},
    {kBrowseCopyFolder, kBrowseCopyFolderHint, kBrowseCopyFolderName}};
constexpr ControlTexts kLabelTexts[frmAction::kLabels] = {
    {kActionTargetLabel}, {kActionExtractLabel}, {kActionMoveLabel},
    {kActionCopyLabel},   {kActionRenameLabel},  {kActionExtractTypeLabel},
    {kActionIncludeMark}, {kActionExcludeMark},  {kActionOpenFileMark}};

void SetCaption(QGroupBox* control, const QString& caption) {
  control->setTitle(caption);
}
void SetCaption(QAbstractButton* control, const QString& caption) {
  control->setText(caption);
}
void SetCaption(QLabel* control, const QString& caption) {
  control->setText(caption);
}
void SetCaption(QWidget*, const QString&) {}

template <class Controls, std::size_t kCount>
void SetControlTexts(const Controls& controls, const ControlTexts (&texts)[kCount]) {
  static_assert(std::tuple_size_v<Controls> == kCount);
  for (std::size_t i = 0; i < kCount; ++i) {
    SetCaption(controls[i], Text(texts[i].caption));
    controls[i]->setToolTip(Text(texts[i].tool_tip));
    controls[i]->setAccessibleName(Text(texts[i].name));
  }
}

// They bear the names that they have in the code.
template <class Controls>
void Make(Controls* controls, const char* array, QWidget* owner) {
  for (std::size_t i = 0; i < controls->size(); ++i) {
    using Control = std::remove_pointer_t<typename Controls::value_type>;
    (*controls)[i] = new Control(owner);
    (*controls)[i]->setObjectName(QString("%1(%2)").arg(array).arg(i));
  }
}

constexpr int kFieldCharacters = 48;  // that a field has room for at first

// Columns of the file's frame.
constexpr int kLabelColumn = 0;
constexpr int kCheckColumn = 1;
constexpr int kFieldColumn = 2;
constexpr int kButtonColumn = 3;

}  // namespace

void frmAction::MakeControls() {
  body_ = new QWidget(this);
  Make(&fra, "fra", body_);
  Make(&cbo, "cbo", body_);
  Make(&chk, "chk", body_);
  Make(&opt, "opt", body_);
  Make(&txt, "txt", body_);
  Make(&cmd, "cmd", body_);
  Make(&lbl, "lbl", body_);
  plan_ = new PlanView(body_);
  plan_->setObjectName("plan");
}

void frmAction::SetTexts() {
  SetControlTexts(fra, kFrameTexts);
  SetControlTexts(cbo, kComboTexts);
  SetControlTexts(chk, kCheckTexts);
  SetControlTexts(opt, kOptionTexts);
  SetControlTexts(txt, kFieldTexts);
  SetControlTexts(cmd, kButtonTexts);
  SetControlTexts(lbl, kLabelTexts);
  for (const TextId mode : {kByStandardSettings, kRenameNever, kRenameAlways, kRenameWhenTaken}) {
    cbo[kRenameCombo]->addItem(Text(mode));
  }
}

void frmAction::MakeMenus() {
  constexpr MenuEntry kLine = {-1, kNone};
  menu_bar_ = new QMenuBar(this);
  mnuMenu[kFileMenu] = MakeMenu(
      kActionMenuFile, "mnuFile",
      {{kExecute, kActionMenuExecute}, {kSkip, kActionMenuSkip}, kLine, {kQuit, kActionMenuQuit}}, &mnuFile);
  mnuMenu[kEditMenu] = MakeMenu(kActionMenuEdit, "mnuEdit",
                                {{kNextProfile, kActionMenuNextProfile},
                                 {kPreviousProfile, kActionMenuPreviousProfile},
                                 kLine,
                                 {kEditProfile, kActionMenuNewProfile},
                                 kLine,
                                 {kToggleExtract, kActionMenuExtract},
                                 {kToggleMove, kActionMenuMove},
                                 {kToggleCopy, kActionMenuCopy},
                                 kLine,
                                 {kStepRename, kActionMenuStepRename}},
                                &mnuEdit);
  mnuMenu[kSettingsMenu] = MakeMenu(kActionMenuSettings, "mnuOption",
                                    {{kStandardSettings, kActionMenuStandard},
                                     {kTestSettings, kActionMenuTestSettings},
                                     kLine,
                                     {kGeneralSettings, kActionMenuGeneral}},
                                    &mnuOption);
  mnuMenu[kHelpMenu] = MakeMenu(kActionMenuHelp, "mnuAbout", {{kAbout, kActionMenuAbout}}, &mnuAbout);
}

QMenu* frmAction::MakeMenu(TextId caption, const char* name, const std::vector<MenuEntry>& entries,
                           Actions* actions) {
  QMenu* menu = menu_bar_->addMenu(Text(caption));
  for (const MenuEntry& entry : entries) {
    if (entry.caption == kNone) {
      menu->addSeparator();
      continue;
    }
    QAction* action = menu->addAction(Text(entry.caption));
    action->setObjectName(QString("%1(%2)").arg(name).arg(entry.command));
    (*actions)[entry.command] = action;
  }
  return menu;
}

QLayout* frmAction::MakeProfileFrame() {
  auto* row = new QHBoxLayout;
  row->addWidget(cbo[kProfileCombo], 1);
  row->addWidget(cmd[kEditButton]);
  return row;
}

QLayout* frmAction::MakeFileFrame() {
  auto* grid = new QGridLayout;
  grid->addWidget(lbl[kTargetLabel], 0, kLabelColumn);
  grid->addWidget(txt[kTargetField], 0, kFieldColumn, 1, 2);
  for (std::size_t i = 0; i < kActionRows; ++i) {
    const int row = static_cast<int>(i) + 1;
    QLabel* label = lbl[kExtractLabel + i];
    QCheckBox* box = chk[kExtractCheck + i];
    grid->addWidget(label, row, kLabelColumn);
    grid->addWidget(box, row, kCheckColumn);
    grid->addWidget(txt[kExtractField + i], row, kFieldColumn);
    grid->addWidget(cmd[kBrowseExtractButton + i], row, kButtonColumn);
    label->setBuddy(box);
  }
  grid->setColumnStretch(kFieldColumn, 1);
  return grid;
}

QLayout* frmAction::MakeSettingsFrame() {
  auto* grid = new QGridLayout;
  auto* methods = new QHBoxLayout;
  methods->addWidget(opt[kOverwriteOption]);
  methods->addWidget(opt[kUpdateOption]);
  methods->addStretch();
  auto* marks = new QHBoxLayout;
  for (std::size_t i = kIncludeMark; i <= kOpenFileMark; ++i) {
    // Marks that come and go must not move anything.
    QSizePolicy policy = lbl[i]->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    lbl[i]->setSizePolicy(policy);
    marks->addWidget(lbl[i]);
  }
  marks->addStretch();
  marks->setSpacing(fontMetrics().averageCharWidth() * 2);
  lbl[kRenameLabel]->setBuddy(cbo[kRenameCombo]);
  grid->addWidget(lbl[kRenameLabel], 0, 0);
  grid->addWidget(cbo[kRenameCombo], 0, 1);
  grid->addWidget(lbl[kExtractTypeLabel], 1, 0);
  grid->addLayout(methods, 1, 1);
  grid->addLayout(marks, 2, 0, 1, 2);
  grid->setColumnStretch(1, 1);
  return grid;
}

QLayout* frmAction::MakeSpecialFrame() {
  auto* column = new QVBoxLayout;
  column->addWidget(chk[kSmartMakeDirCheck]);
  column->addWidget(chk[kOpenDirCheck]);
  column->addStretch();
  return column;
}

QLayout* frmAction::MakeButtons() {
  auto* row = new QHBoxLayout;
  row->addStretch();
  row->addWidget(cmd[kOkButton]);
  row->addWidget(cmd[kCancelButton]);
  cmd[kOkButton]->setDefault(true);
  return row;
}

void frmAction::ArrangeControls() {
  fra[kFileFrame]->setLayout(MakeFileFrame());
  fra[kSettingsFrame]->setLayout(MakeSettingsFrame());
  fra[kSpecialFrame]->setLayout(MakeSpecialFrame());
  fra[kProfileFrame]->setLayout(MakeProfileFrame());
  auto* settings = new QHBoxLayout;
  settings->addWidget(fra[kSettingsFrame], 1);
  settings->addWidget(fra[kSpecialFrame]);
  auto* body = new QVBoxLayout(body_);
  body->addWidget(fra[kProfileFrame]);
  body->addWidget(fra[kFileFrame]);
  body->addLayout(settings);
  body->addWidget(plan_);
  body->addLayout(MakeButtons());
  auto* whole = new QVBoxLayout(this);
  whole->setContentsMargins(0, 0, 0, 0);
  whole->setMenuBar(menu_bar_);
  whole->addWidget(body_);
}

// What depends on the font.
void frmAction::FinishControls() {
  for (QLineEdit* field : txt) field->setMinimumWidth(fontMetrics().averageCharWidth() * kFieldCharacters);
  for (std::size_t i = kBrowseExtractButton; i <= kBrowseCopyButton; ++i) {
    cmd[i]->setFixedWidth(cmd[i]->sizeHint().height() * 5 / 4);
  }
  // Long names of profiles do not widen the window.
  cbo[kProfileCombo]->setMinimumContentsLength(1);
  cbo[kProfileCombo]->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
  txt[kTargetField]->setReadOnly(true);
  for (std::size_t i = 0; i < kActionRows; ++i) SelectAllOnFocus(txt[kExtractField + i]);
  // Files cannot be dropped here, and the pointer is to show it.
  for (QWidget* control : findChildren<QWidget*>()) control->setAcceptDrops(false);
  SetTabOrder();
  PaintMarks();
}

void frmAction::SetTabOrder() {
  std::vector<QWidget*> order = {cbo[kProfileCombo], cmd[kEditButton], txt[kTargetField]};
  for (std::size_t i = 0; i < kActionRows; ++i) {
    order.insert(order.end(),
                 {chk[kExtractCheck + i], txt[kExtractField + i], cmd[kBrowseExtractButton + i]});
  }
  order.insert(order.end(),
               {cbo[kRenameCombo], opt[kOverwriteOption], opt[kUpdateOption], chk[kSmartMakeDirCheck],
                chk[kOpenDirCheck], cmd[kOkButton], cmd[kCancelButton]});
  for (std::size_t i = 1; i < order.size(); ++i) setTabOrder(order[i - 1], order[i]);
}

// Menus and controls share some letters, and the first press goes to the one that claimed the letter first.
// The menu bar claims its letters when it is laid out.
void frmAction::LetMenusGoFirst() {
  const std::initializer_list<QAbstractButton*> buttons = {chk[kOpenDirCheck], cmd[kEditButton],
                                                           opt[kOverwriteOption]};
  for (QAbstractButton* button : buttons) button->setShortcut(QKeySequence::mnemonic(button->text()));
}

// The colours follow the theme.
void frmAction::PaintMarks() {
  QPalette mark;
  mark.setColor(QPalette::WindowText, MarkColour(mark));
  for (std::size_t i = kIncludeMark; i <= kOpenFileMark; ++i) lbl[i]->setPalette(mark);
  QPalette locked;
  locked.setColor(QPalette::Base, locked.color(QPalette::Button));
  txt[kTargetField]->setPalette(locked);
}

}  // namespace quendle
