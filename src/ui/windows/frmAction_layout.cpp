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
#include <type_traits>

#include "resources/string_table.h"
#include "ui/parts/form_helpers.h"
#include "ui/parts/hints.h"
#include "ui/parts/text.h"
#include "ui/windows/frmAction.h"
#include "ui/windows/plan_view.h"

namespace quendle {
namespace {

struct ControlTexts {
  std::size_t index;
  int caption;   // 0: none
  int tool_tip;  // likewise
  int name = 0;  // for those who hear the window, where the caption does not say it
};

constexpr ControlTexts kFrames[] = {{0, 4301, 4302}, {1, 4303, 4304}, {2, 4305, 4306}, {3, 4307, 4308}};
constexpr ControlTexts kCombos[] = {{0, 0, 4001, 6210}, {1, 0, 4002, 6211}};
constexpr ControlTexts kChecks[] = {
    {0, 0, 4102, 6212}, {1, 0, 4104, 6213}, {2, 0, 4106, 6214}, {3, 4107, 4108}, {4, 4109, 4110}};
constexpr ControlTexts kOptions[] = {{0, 4351, 4352}, {1, 4353, 4354}};
constexpr ControlTexts kFields[] = {
    {0, 0, 4401, 6215}, {1, 0, 4402, 6216}, {2, 0, 4403, 6217}, {3, 0, 4404, 6218}};
constexpr ControlTexts kButtons[] = {{0, 4201, 0},          {1, 4203, 0},          {2, 4213, 4214},
                                     {3, 4207, 4208, 6219}, {4, 4209, 4210, 6220}, {5, 4211, 4212, 6221}};
constexpr ControlTexts kLabels[] = {{0, 4501, 0}, {1, 4503, 0}, {2, 4505, 0}, {3, 4507, 0}, {4, 4509, 0},
                                    {5, 4511, 0}, {6, 4517, 0}, {7, 4513, 0}, {8, 4515, 0}};

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
  for (const ControlTexts& row : texts) {
    auto* control = controls[row.index];
    if (row.caption != 0) SetCaption(control, Text(row.caption));
    if (row.tool_tip != 0) control->setToolTip(Text(row.tool_tip));
    if (row.name != 0) control->setAccessibleName(Text(row.name));
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
  SetControlTexts(fra, kFrames);
  SetControlTexts(cbo, kCombos);
  SetControlTexts(chk, kChecks);
  SetControlTexts(opt, kOptions);
  SetControlTexts(txt, kFields);
  SetControlTexts(cmd, kButtons);
  SetControlTexts(lbl, kLabels);
  for (const int mode : {1871, 1872, 1873, 1874}) cbo[1]->addItem(Text(mode));
}

void frmAction::MakeMenus() {
  menu_bar_ = new QMenuBar(this);
  mnuMenu[0] = MakeMenu(4601, "mnuFile", {{0, 4621}, {1, 4622}, {-1, 0}, {6, 4623}}, &mnuFile);
  mnuMenu[1] = MakeMenu(4602, "mnuEdit",
                        {{0, 4641},
                         {1, 4642},
                         {-1, 0},
                         {11, 4650},
                         {-1, 0},
                         {16, 4643},
                         {17, 4644},
                         {18, 4645},
                         {-1, 0},
                         {26, 4652}},
                        &mnuEdit);
  mnuMenu[2] = MakeMenu(4603, "mnuOption", {{0, 4661}, {1, 4663}, {-1, 0}, {6, 4662}}, &mnuOption);
  mnuMenu[3] = MakeMenu(4604, "mnuAbout", {{0, 4681}}, &mnuAbout);
}

// An entry of index -1 is a line between groups.
QMenu* frmAction::MakeMenu(int caption, const char* name, const std::vector<std::pair<int, int>>& entries,
                           Actions* actions) {
  QMenu* menu = menu_bar_->addMenu(Text(caption));
  for (const auto& [index, text] : entries) {
    if (index < 0) {
      menu->addSeparator();
      continue;
    }
    QAction* action = menu->addAction(Text(text));
    action->setObjectName(QString("%1(%2)").arg(name).arg(index));
    (*actions)[index] = action;
  }
  return menu;
}

QLayout* frmAction::MakeProfileFrame() {
  auto* row = new QHBoxLayout;
  row->addWidget(cbo[0], 1);
  row->addWidget(cmd[2]);
  return row;
}

QLayout* frmAction::MakeFileFrame() {
  auto* grid = new QGridLayout;
  grid->addWidget(lbl[0], 0, kLabelColumn);
  grid->addWidget(txt[0], 0, kFieldColumn, 1, 2);
  for (std::size_t i = 1; i <= kActionRows; ++i) {
    const int row = static_cast<int>(i);
    grid->addWidget(lbl[i], row, kLabelColumn);
    grid->addWidget(chk[i - 1], row, kCheckColumn);
    grid->addWidget(txt[i], row, kFieldColumn);
    grid->addWidget(cmd[i + 2], row, kButtonColumn);
    lbl[i]->setBuddy(chk[i - 1]);
  }
  grid->setColumnStretch(kFieldColumn, 1);
  return grid;
}

QLayout* frmAction::MakeSettingsFrame() {
  auto* grid = new QGridLayout;
  auto* methods = new QHBoxLayout;
  methods->addWidget(opt[0]);
  methods->addWidget(opt[1]);
  methods->addStretch();
  auto* marks = new QHBoxLayout;
  for (std::size_t i = 6; i <= 8; ++i) {
    // Marks that come and go must not move anything.
    QSizePolicy policy = lbl[i]->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    lbl[i]->setSizePolicy(policy);
    marks->addWidget(lbl[i]);
  }
  marks->addStretch();
  marks->setSpacing(fontMetrics().averageCharWidth() * 2);
  lbl[4]->setBuddy(cbo[1]);
  grid->addWidget(lbl[4], 0, 0);
  grid->addWidget(cbo[1], 0, 1);
  grid->addWidget(lbl[5], 1, 0);
  grid->addLayout(methods, 1, 1);
  grid->addLayout(marks, 2, 0, 1, 2);
  grid->setColumnStretch(1, 1);
  return grid;
}

QLayout* frmAction::MakeSpecialFrame() {
  auto* column = new QVBoxLayout;
  column->addWidget(chk[3]);
  column->addWidget(chk[4]);
  column->addStretch();
  return column;
}

QLayout* frmAction::MakeButtons() {
  auto* row = new QHBoxLayout;
  row->addStretch();
  row->addWidget(cmd[1]);
  row->addWidget(cmd[0]);
  cmd[1]->setDefault(true);
  return row;
}

void frmAction::ArrangeControls() {
  fra[0]->setLayout(MakeFileFrame());
  fra[1]->setLayout(MakeSettingsFrame());
  fra[2]->setLayout(MakeSpecialFrame());
  fra[3]->setLayout(MakeProfileFrame());
  auto* settings = new QHBoxLayout;
  settings->addWidget(fra[1], 1);
  settings->addWidget(fra[2]);
  auto* body = new QVBoxLayout(body_);
  body->addWidget(fra[3]);
  body->addWidget(fra[0]);
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
  for (std::size_t i = 3; i <= 5; ++i) cmd[i]->setFixedWidth(cmd[i]->sizeHint().height() * 5 / 4);
  // Long names of profiles do not widen the window.
  cbo[0]->setMinimumContentsLength(1);
  cbo[0]->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
  txt[0]->setReadOnly(true);
  for (std::size_t i = 1; i <= kActionRows; ++i) SelectAllOnFocus(txt[i]);
  // Files cannot be dropped here, and the pointer is to show it.
  for (QWidget* control : findChildren<QWidget*>()) control->setAcceptDrops(false);
  SetTabOrder();
  PaintMarks();
}

void frmAction::SetTabOrder() {
  std::vector<QWidget*> order = {cbo[0], cmd[2], txt[0]};
  for (std::size_t i = 1; i <= kActionRows; ++i) order.insert(order.end(), {chk[i - 1], txt[i], cmd[i + 2]});
  order.insert(order.end(), {cbo[1], opt[0], opt[1], chk[3], chk[4], cmd[1], cmd[0]});
  for (std::size_t i = 1; i < order.size(); ++i) setTabOrder(order[i - 1], order[i]);
}

// Menus and controls share some letters, and the first press goes to the one that claimed the letter first.
// The menu bar claims its letters when it is laid out.
void frmAction::LetMenusGoFirst() {
  const std::initializer_list<QAbstractButton*> buttons = {chk[4], cmd[2], opt[0]};
  for (QAbstractButton* button : buttons) button->setShortcut(QKeySequence::mnemonic(button->text()));
}

// The colours follow the theme.
void frmAction::PaintMarks() {
  QPalette mark;
  mark.setColor(QPalette::WindowText, MarkColour(mark));
  for (std::size_t i = 6; i <= 8; ++i) lbl[i]->setPalette(mark);
  QPalette locked;
  locked.setColor(QPalette::Base, locked.color(QPalette::Button));
  txt[0]->setPalette(locked);
}

}  // namespace quendle
