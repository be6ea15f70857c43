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

QString frmEdit::Name(const char* kind, TextId key) const {
  return QString("%1.%2").arg(kind, Text(key));
}

QWidget* frmEdit::MakeGroup(TextId caption, QLayout* layout) {
  auto* group = new QGroupBox(Text(caption), this);
  group->setLayout(layout);
  return group;
}

QPushButton* frmEdit::MakeButton(const char* name, TextId caption, TextId tool_tip, TextId accessible_name) {
  auto* button = new QPushButton(Text(caption), this);
  button->setObjectName(name);
  button->setToolTip(Text(tool_tip));
  button->setAccessibleName(Text(accessible_name));
  return button;
}

QCheckBox* frmEdit::MakeCheckBox(TextId key) {
  auto* box = new QCheckBox(Text(CaptionOf(key).label), this);
  box->setObjectName(Name("chk", key));
  box->setToolTip(Text(CaptionOf(key).tool_tip));
  return chk[key] = box;
}

// A row of the behaviour's grid, in which a caption stands beside the first line of what it is for.
void frmEdit::AddChoiceRow(QGridLayout* grid, TextId key, QWidget* choices) {
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
QWidget* frmEdit::MakeChoices(TextId key, QBoxLayout::Direction direction,
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
    TextId caption, tool_tip;
  } kActions[] = {{StepKind::kExtract, TextId::kEditorExtract, TextId::kEditorExtractHint},
                  {StepKind::kMove, TextId::kEditorMove, TextId::kEditorMoveHint},
                  {StepKind::kCopy, TextId::kEditorCopy, TextId::kEditorCopyHint}};
  auto* frame = new QWidget(this);
  auto* row = new QHBoxLayout(frame);
  row->setContentsMargins(0, 0, 0, 0);
  for (const auto& action : kActions) {
    auto* box = new QCheckBox(Text(action.caption), frame);
    box->setObjectName(Name("chk", TextId::kAction) + QString(".%1").arg(static_cast<int>(action.kind)));
    box->setToolTip(Text(action.tool_tip));
    row->addWidget(box);
    chkAction[action.kind] = box;
  }
  row->addStretch();
  return frame;
}

QLabel* frmEdit::MakeHint(TextId key) {
  auto* label = new WrappedLabel(this);
  label->setObjectName(Name("hint", key));
  label->hide();
  return hint[key] = label;
}

void frmEdit::Register(TextId key, QLineEdit* field) {
  field->setObjectName(Name("txt", key));
  field->setToolTip(Text(CaptionOf(key).tool_tip));
  field->setAccessibleName(ToQt(KeyName(key)));
  field->setMinimumWidth(fontMetrics().averageCharWidth() * kFieldCharacters);
  field->setMaxLength(kLongestText);
  SelectAllOnFocus(field);
  txt[key] = field;
}

// A caption, the field, maybe a button, and below them what is wrong with what was typed.
void frmEdit::AddField(QGridLayout* grid, TextId key, QPushButton* button) {
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
  AddField(grid, TextId::kPattern);
  auto* buttons = new QHBoxLayout;
  cmdPropose = MakeButton("cmd.Propose", TextId::kProposePattern, TextId::kProposePatternHint);
  cmdTest = MakeButton("cmd.Test", TextId::kTryPattern, TextId::kTryPatternHint);
  buttons->addWidget(cmdPropose);
  buttons->addWidget(cmdTest);
  grid->addLayout(buttons, 1, kButtonColumn + 1);
  return MakeGroup(TextId::kEditorPatternGroup, grid);
}

QWidget* frmEdit::MakeBehaviourGroup() {
  auto* column = new QVBoxLayout;
  QGridLayout* grid = MakeGrid();
  if (draft_.Has(TextId::kId)) column->addWidget(MakeCheckBox(TextId::kId));
  if (draft_.Has(TextId::kAction)) AddChoiceRow(grid, TextId::kAction, MakeActions());
  AddChoiceRow(grid, TextId::kSmartRename,
               MakeChoices(TextId::kSmartRename, QBoxLayout::TopToBottom,
                           {{TextId::kRenameNeverChoice, TextId::kRenameNeverHint},
                            {TextId::kRenameAlwaysChoice, TextId::kRenameAlwaysHint},
                            {TextId::kRenameWhenTakenChoice, TextId::kRenameWhenTakenHint}}));
  AddChoiceRow(grid, TextId::kExtractType,
               MakeChoices(TextId::kExtractType, QBoxLayout::LeftToRight,
                           {{TextId::kOverwriteChoice, TextId::kOverwriteChoiceHint},
                            {TextId::kUpdateChoice, TextId::kUpdateChoiceHint}}));
  column->addLayout(grid);
  for (const TextId key : {TextId::kSmartMakeDir, TextId::kOpenDir}) {
    column->addWidget(MakeCheckBox(key));
    own_.push_back(chk[key]);
  }
  column->addStretch();
  return MakeGroup(TextId::kEditorBehaviourGroup, column);
}

QWidget* frmEdit::MakeFolderGroup() {
  constexpr struct {
    TextId key, tool_tip, accessible_name;
  } kFolders[] = {{TextId::kExtractTo, TextId::kBrowseExtractFolderHint, TextId::kBrowseExtractFolderName},
                  {TextId::kMoveTo, TextId::kBrowseMoveFolderHint, TextId::kBrowseMoveFolderName},
                  {TextId::kCopyTo, TextId::kBrowseCopyFolderHint, TextId::kBrowseCopyFolderName}};
  QGridLayout* grid = MakeGrid();
  for (const auto& folder : kFolders) {
    if (!draft_.Has(folder.key)) continue;
    const QByteArray name = Name("cmd", folder.key).toUtf8();
    QPushButton* button = MakeButton(name, TextId::kBrowse, folder.tool_tip, folder.accessible_name);
    cmdFolder[folder.key] = button;
    AddField(grid, folder.key, button);
  }
  grid->setRowStretch(grid->rowCount(), 1);
  return MakeGroup(TextId::kEditorFolderGroup, grid);
}

QWidget* frmEdit::MakeMemberGroup() {
  QGridLayout* grid = MakeGrid();
  for (const TextId key : {TextId::kInclude, TextId::kExclude, TextId::kOpenFile}) AddField(grid, key);
  return MakeGroup(TextId::kEditorMemberGroup, grid);
}

QWidget* frmEdit::MakeGeneralGroup() {
  auto* column = new QVBoxLayout;
  for (const TextId key : draft_.Keys()) {
    if (KeyOf(key).kind == SettingKey::Kind::kFlag) column->addWidget(MakeCheckBox(key));
  }
  column->addStretch();
  cmdSendTo = MakeButton("cmd.SendTo", TextId::kAddToSendTo, TextId::kAddToSendToHint);
  column->addWidget(cmdSendTo, 0, Qt::AlignLeft);
  ShowSendTo();
  return MakeGroup(TextId::kEditorGeneralGroup, column);
}

// The button says what it will do.
void frmEdit::ShowSendTo() {
  const bool is_there = platform::IsInSendTo(services_.program);
  cmdSendTo->setText(Text(is_there ? TextId::kRemoveFromSendTo : TextId::kAddToSendTo));
  cmdSendTo->setToolTip(Text(is_there ? TextId::kRemoveFromSendToHint : TextId::kAddToSendToHint));
}

QWidget* frmEdit::MakeFilerGroup() {
  QGridLayout* grid = MakeGrid();
  cmdFiler = MakeButton("cmd.FILER", TextId::kBrowse, TextId::kBrowseFiler, TextId::kBrowseFiler);
  AddField(grid, TextId::kFiler, cmdFiler);
  AddField(grid, TextId::kFilerParm);
  return MakeGroup(TextId::kEditorFilerGroup, grid);
}

QWidget* frmEdit::MakeCharsetGroup() {
  QGridLayout* grid = MakeGrid();
  const EditCaption& rule = CaptionOf(TextId::kArchiveCharset);
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
  return MakeGroup(TextId::kEditorCharsetGroup, grid);
}

QLayout* frmEdit::MakeButtons() {
  cmdOk = MakeButton("cmd.OK", TextId::kOkButton, TextId::kEditorOkHint);
  cmdCancel = MakeButton("cmd.Cancel", TextId::kCancelButton, TextId::kEditorCancelHint);
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
