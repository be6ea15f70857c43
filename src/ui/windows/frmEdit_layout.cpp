// The controls of the editor: their texts and where they stand.
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <algorithm>

#include "core/edit_keys.h"
#include "platform/services/send_to.h"
#include "resources/string_table.h"
#include "settings/setting_keys.h"
#include "ui/parts/form_helpers.h"
#include "ui/parts/text.h"
#include "ui/parts/wrapped_label.h"
#include "ui/windows/frmEdit.h"

namespace quendle {
namespace {

constexpr int kAddToSendTo = 6820;
constexpr int kRemoveFromSendTo = 6821;
constexpr int kAddToSendToHint = 6822;
constexpr int kRemoveFromSendToHint = 6823;

constexpr int kFieldCharacters = 36;  // that a field has room for at first

constexpr int kLongestText = 1 << 17;  // as long as what is read from a file: nothing is cut by showing it

constexpr int kLabelColumn = 0;
constexpr int kFieldColumn = 1;
constexpr int kButtonColumn = 2;

constexpr const char* kCharsets[] = {"",        "CP932", "UTF-8",  "EUC-JP", "ISO-2022-JP",
                                     "GB18030", "BIG5",  "EUC-KR", "CP437",  "CP1252"};

QGridLayout* MakeGrid() {
  auto* grid = new QGridLayout;
  grid->setColumnStretch(kFieldColumn, 1);
  return grid;
}

// The fields of groups that stand one below the other begin at the same place.
void AlignCaptions(const QLayout& column) {
  std::vector<QLabel*> captions;
  int width = 0;
  for (int i = 0; i < column.count(); ++i) {
    for (auto* label : column.itemAt(i)->widget()->findChildren<QLabel*>()) {
      if (label->buddy() == nullptr) continue;
      captions.push_back(label);
      width = std::max(width, label->sizeHint().width());
    }
  }
  for (QLabel* caption : captions) caption->setMinimumWidth(width);
}

}  // namespace

QString frmEdit::Name(const char* kind, int key) const {
  return QString("%1.%2").arg(kind, Text(key));
}

QWidget* frmEdit::MakeGroup(int caption, QLayout* layout) {
  auto* group = new QGroupBox(Text(caption), this);
  group->setLayout(layout);
  return group;
}

QPushButton* frmEdit::MakeButton(const char* name, int caption, int tool_tip, int accessible_name) {
  auto* button = new QPushButton(Text(caption), this);
  button->setObjectName(name);
  if (tool_tip != 0) button->setToolTip(Text(tool_tip));
  if (accessible_name != 0) button->setAccessibleName(Text(accessible_name));
  return button;
}

QCheckBox* frmEdit::MakeCheckBox(int key) {
  auto* box = new QCheckBox(Text(CaptionOf(key).label), this);
  box->setObjectName(Name("chk", key));
  box->setToolTip(Text(CaptionOf(key).tool_tip));
  return chk[key] = box;
}

// A row of the behaviour's grid, in which a caption stands beside the first line of what it is for.
void frmEdit::AddChoiceRow(QGridLayout* grid, int key, QWidget* choices) {
  auto* label = new QLabel(Text(CaptionOf(key).label), this);
  label->setToolTip(Text(CaptionOf(key).tool_tip));
  choices->setAccessibleName(ToQt(KeyName(key)));
  label->setMinimumHeight(choices->findChild<QAbstractButton*>()->sizeHint().height());
  const int row = grid->rowCount();
  grid->addWidget(label, row, kLabelColumn, Qt::AlignTop);
  grid->addWidget(choices, row, kFieldColumn);
  own_.push_back(label);
  own_.push_back(choices);
}

// The first choice is number 1.
QWidget* frmEdit::MakeChoices(int key, QBoxLayout::Direction direction,
                              const std::vector<ChoiceTexts>& texts) {
  auto* frame = new QWidget(this);  // the choices exclude each other within it
  auto* choices = new QBoxLayout(direction, frame);
  choices->setContentsMargins(0, 0, 0, 0);
  for (const ChoiceTexts& text : texts) {
    const int number = static_cast<int>(opt[key].size()) + 1;
    auto* choice = new QRadioButton(Text(text.caption), frame);
    choice->setObjectName(Name("opt", key) + QString(".%1").arg(number));
    choice->setToolTip(Text(text.tool_tip).trimmed());
    opt[key][number] = choice;
    choices->addWidget(choice);
  }
  choices->addStretch();
  return frame;
}

QWidget* frmEdit::MakeActions() {
  constexpr struct {
    StepKind kind;
    int caption, tool_tip;
  } kActions[] = {
      {StepKind::kExtract, 6656, 6657}, {StepKind::kMove, 6660, 6661}, {StepKind::kCopy, 6662, 6663}};
  auto* frame = new QWidget(this);
  auto* row = new QHBoxLayout(frame);
  row->setContentsMargins(0, 0, 0, 0);
  for (const auto& action : kActions) {
    auto* box = new QCheckBox(Text(action.caption), frame);
    box->setObjectName(Name("chk", text_id::kAction) + QString(".%1").arg(static_cast<int>(action.kind)));
    box->setToolTip(Text(action.tool_tip));
    row->addWidget(box);
    chkAction[action.kind] = box;
  }
  row->addStretch();
  return frame;
}

QLabel* frmEdit::MakeHint(int key) {
  auto* label = new WrappedLabel(this);
  label->setObjectName(Name("hint", key));
  label->hide();
  return hint[key] = label;
}

void frmEdit::Register(int key, QLineEdit* field) {
  field->setObjectName(Name("txt", key));
  field->setToolTip(Text(CaptionOf(key).tool_tip));
  field->setAccessibleName(ToQt(KeyName(key)));
  field->setMinimumWidth(fontMetrics().averageCharWidth() * kFieldCharacters);
  field->setMaxLength(kLongestText);
  SelectAllOnFocus(field);
  txt[key] = field;
}

// A caption, the field, maybe a button, and below them what is wrong with what was typed.
void frmEdit::AddField(QGridLayout* grid, int key, QPushButton* button) {
  const int row = grid->rowCount();
  auto* label = new QLabel(Text(CaptionOf(key).label), this);
  auto* field = new QLineEdit(this);
  Register(key, field);
  label->setBuddy(field);
  grid->addWidget(label, row, kLabelColumn);
  grid->addWidget(field, row, kFieldColumn, 1, button == nullptr ? 2 : 1);
  if (button != nullptr) {
    grid->addWidget(button, row, kButtonColumn);
    setTabOrder(field, button);
  }
  grid->addWidget(MakeHint(key), row + 1, kFieldColumn, 1, 2);
}

QWidget* frmEdit::MakePatternGroup() {
  QGridLayout* grid = MakeGrid();
  AddField(grid, text_id::kPattern);
  auto* buttons = new QHBoxLayout;
  cmdPropose = MakeButton("cmd.Propose", 6664, 6665);
  cmdTest = MakeButton("cmd.Test", 6666, 6667);
  buttons->addWidget(cmdPropose);
  buttons->addWidget(cmdTest);
  grid->addLayout(buttons, 1, kButtonColumn + 1);
  return MakeGroup(6605, grid);
}

QWidget* frmEdit::MakeBehaviourGroup() {
  auto* column = new QVBoxLayout;
  QGridLayout* grid = MakeGrid();
  if (draft_.Has(text_id::kId)) column->addWidget(MakeCheckBox(text_id::kId));
  if (draft_.Has(text_id::kAction)) AddChoiceRow(grid, text_id::kAction, MakeActions());
  AddChoiceRow(grid, text_id::kSmartRename,
               MakeChoices(text_id::kSmartRename, QBoxLayout::TopToBottom,
                           {{3509, 3510}, {3511, 3512}, {3513, 3514}}));
  AddChoiceRow(grid, text_id::kExtractType,
               MakeChoices(text_id::kExtractType, QBoxLayout::LeftToRight, {{4351, 4352}, {4353, 4354}}));
  column->addLayout(grid);
  for (const int key : {text_id::kSmartMakeDir, text_id::kOpenDir}) {
    column->addWidget(MakeCheckBox(key));
    own_.push_back(chk[key]);
  }
  column->addStretch();
  return MakeGroup(6606, column);
}

QWidget* frmEdit::MakeFolderGroup() {
  constexpr struct {
    int key, tool_tip, accessible_name;
  } kFolders[] = {
      {text_id::kExtractTo, 4208, 6219}, {text_id::kMoveTo, 4210, 6220}, {text_id::kCopyTo, 4212, 6221}};
  QGridLayout* grid = MakeGrid();
  for (const auto& folder : kFolders) {
    if (!draft_.Has(folder.key)) continue;
    const QByteArray name = Name("cmd", folder.key).toUtf8();
    QPushButton* button = MakeButton(name, 6668, folder.tool_tip, folder.accessible_name);
    cmdFolder[folder.key] = button;
    AddField(grid, folder.key, button);
  }
  grid->setRowStretch(grid->rowCount(), 1);
  return MakeGroup(6607, grid);
}

QWidget* frmEdit::MakeMemberGroup() {
  QGridLayout* grid = MakeGrid();
  for (const int key : {text_id::kInclude, text_id::kExclude, text_id::kOpenFile}) AddField(grid, key);
  return MakeGroup(6608, grid);
}

QWidget* frmEdit::MakeGeneralGroup() {
  auto* column = new QVBoxLayout;
  for (const int key : draft_.Keys()) {
    if (KeyOf(key).kind == SettingKey::Kind::kFlag) column->addWidget(MakeCheckBox(key));
  }
  column->addStretch();
  cmdSendTo = MakeButton("cmd.SendTo", kAddToSendTo, kAddToSendToHint);
  column->addWidget(cmdSendTo, 0, Qt::AlignLeft);
  ShowSendTo();
  return MakeGroup(6609, column);
}

// The button says what it will do.
void frmEdit::ShowSendTo() {
  const bool is_there = platform::IsInSendTo(services_.program);
  cmdSendTo->setText(Text(is_there ? kRemoveFromSendTo : kAddToSendTo));
  cmdSendTo->setToolTip(Text(is_there ? kRemoveFromSendToHint : kAddToSendToHint));
}

QWidget* frmEdit::MakeFilerGroup() {
  QGridLayout* grid = MakeGrid();
  cmdFiler = MakeButton("cmd.FILER", 6668, 6669, 6669);
  AddField(grid, text_id::kFiler, cmdFiler);
  AddField(grid, text_id::kFilerParm);
  return MakeGroup(6610, grid);
}

QWidget* frmEdit::MakeCharsetGroup() {
  QGridLayout* grid = MakeGrid();
  const EditCaption& rule = CaptionOf(text_id::kArchiveCharset);
  auto* label = new QLabel(Text(rule.label), this);
  cboCharset = new QComboBox(this);
  cboCharset->setObjectName("cbo.ArchiveCharset");
  cboCharset->setEditable(true);
  cboCharset->setInsertPolicy(QComboBox::NoInsert);
  cboCharset->setToolTip(Text(rule.tool_tip));
  cboCharset->setAccessibleName(ToQt(KeyName(rule.key)));
  for (const char* charset : kCharsets) cboCharset->addItem(charset);
  cboCharset->setCompleter(nullptr);  // what is typed is meant
  Register(rule.key, cboCharset->lineEdit());
  label->setBuddy(cboCharset);
  grid->addWidget(label, 0, kLabelColumn);
  grid->addWidget(cboCharset, 0, kFieldColumn);
  grid->addWidget(MakeHint(rule.key), 1, kFieldColumn);
  grid->setRowStretch(2, 1);
  return MakeGroup(6611, grid);
}

QLayout* frmEdit::MakeButtons() {
  cmdOk = MakeButton("cmd.OK", 6108, 6670);
  cmdCancel = MakeButton("cmd.Cancel", 6109, 6671);
  cmdOk->setDefault(true);
  auto* row = new QHBoxLayout;
  row->addStretch();
  row->addWidget(cmdOk);
  row->addWidget(cmdCancel);
  return row;
}

// Each group is made in the order in which Tab goes through it.
QLayout* frmEdit::MakeColumns() {
  auto* left = new QVBoxLayout;
  auto* right = new QVBoxLayout;
  if (draft_.Mode() == EditMode::kGeneral) {
    left->addWidget(MakeGeneralGroup());
    right->addWidget(MakeFilerGroup());
    right->addWidget(MakeCharsetGroup(), 1);
  } else {
    left->addWidget(MakeBehaviourGroup());
    right->addWidget(MakeFolderGroup(), 1);
    if (draft_.IsProfile()) right->addWidget(MakeMemberGroup());
  }
  AlignCaptions(*right);
  auto* columns = new QHBoxLayout;
  columns->addLayout(left);
  columns->addLayout(right, 1);
  return columns;
}

void frmEdit::ArrangeControls() {
  auto* whole = new QVBoxLayout(this);
  if (draft_.IsProfile()) whole->addWidget(MakePatternGroup());
  whole->addLayout(MakeColumns(), 1);
  whole->addLayout(MakeButtons());
  // Files cannot be dropped here, and the pointer is to show it.
  for (QWidget* control : findChildren<QWidget*>()) control->setAcceptDrops(false);
  PaintHints();
}

}  // namespace quendle
