// What the list of profiles consists of.
#include <QAction>
#include <QBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QStatusBar>
#include <QToolBar>
#include <QToolButton>
#include <QTreeView>

#include "ui/parts/elided_label.h"
#include "ui/parts/form_helpers.h"
#include "ui/parts/pictures.h"
#include "ui/parts/text.h"
#include "ui/windows/action_marks.h"
#include "ui/windows/frmMain.h"

namespace quendle {
namespace {

// At first, in characters of average width.
constexpr int kColumnCharacters[ProfileModel::kColumns] = {13, 12, 15, 0, 11, 11, 11};
constexpr int kWidestColumn = 4000;     // that anybody could have made
constexpr QSize kFirstSize(1040, 540);  // so that all columns are in sight

constexpr struct {
  const char* command;
  const char* picture;
  TextId caption;
} kToolBar[] = {
    {"add", "add", TextId::kToolAdd},          {"edit", "edit", TextId::kToolEdit},
    {"rename", "rename", TextId::kToolRename}, {"duplicate", "duplicate", TextId::kToolDuplicate},
    {"remove", "remove", TextId::kToolRemove},
};
constexpr struct {
  const char* command;
  TextId caption;
} kOpenCommands[kActionRows] = {{"openExtract", TextId::kMainMenuOpenExtractFolder},
                                {"openMove", TextId::kMainMenuOpenMoveFolder},
                                {"openCopy", TextId::kMainMenuOpenCopyFolder}};

}  // namespace

void frmMain::MakeControls() {
  auto* body = new QWidget(this);
  setCentralWidget(body);
  view_ = new QTreeView(body);
  view_->setObjectName("list");
  view_->setModel(&model_);
  view_->setRootIsDecorated(false);
  view_->setItemsExpandable(false);
  view_->setUniformRowHeights(true);
  view_->setAllColumnsShowFocus(true);
  view_->setAlternatingRowColors(true);
  view_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  view_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  view_->setTextElideMode(Qt::ElideMiddle);
  view_->setContextMenuPolicy(Qt::CustomContextMenu);
  view_->setItemDelegateForColumn(ProfileModel::kAction, new ActionMarks(model_, view_));
  hint_ = new QLabel(view_->viewport());
  hint_->setObjectName("hint");
  hint_->setAlignment(Qt::AlignCenter);
  hint_->setTextFormat(Qt::PlainText);
  hint_->setWordWrap(true);
  hint_->setAttribute(Qt::WA_TransparentForMouseEvents);
  hint_->setForegroundRole(QPalette::PlaceholderText);
  status_ = new ElidedLabel(this);
  status_->setObjectName("status");
  statusBar()->addWidget(status_, 1);
  auto* layout = new QVBoxLayout(body);
  layout->addLayout(MakeFields());
  layout->addWidget(view_, 1);
  layout->setContentsMargins(8, 6, 8, 0);
}

QLayout* frmMain::MakeFields() {
  const auto make = [this](const char* name, TextId caption, TextId placeholder, QBoxLayout* row) {
    auto* label = new QLabel(Text(caption), this);
    auto* field = new QLineEdit(this);
    field->setObjectName(name);
    field->setAccessibleName(Text(caption));
    field->setPlaceholderText(Text(placeholder));
    field->setClearButtonEnabled(true);
    label->setBuddy(field);
    row->addWidget(label);
    row->addWidget(field, 1);
    return field;
  };
  auto* row = new QHBoxLayout;
  filter_ = make("filter", TextId::kFilterLabel, TextId::kFilterPlaceholder, row);
  row->addSpacing(12);
  test_ = make("test", TextId::kTestLabel, TextId::kTestPlaceholder, row);
  return row;
}

QMenu* frmMain::MakeMenu(TextId caption) {
  return menuBar()->addMenu(Text(caption));
}

QAction* frmMain::AddCommand(QMenu* menu, TextId caption, const char* name, const QList<QKeySequence>& keys,
                             Needs needs, std::function<void()> act) {
  QAction* action = menu->addAction(Text(caption));
  action->setObjectName(name);
  action->setShortcuts(keys);
  action->setAutoRepeat(false);
  connect(action, &QAction::triggered, this, [this, act = std::move(act)] {
    if (!is_busy_) act();
  });
  commands_.push_back({action, needs});
  return action;
}

// In the fields these keys edit the text.
void frmMain::LetKeysBeTheLists(QAction* action) {
  action->setShortcutContext(Qt::WidgetShortcut);
  view_->addAction(action);
}

void frmMain::MakeMenus() {
  MakeProfileMenu();
  MakeOtherMenus();
  MakeContextMenu();
}

void frmMain::MakeProfileMenu() {
  QMenu* menu = MakeMenu(TextId::kMainMenuProfile);
  AddCommand(menu, TextId::kMainMenuAdd, "add", {QKeySequence("Ctrl+N"), QKeySequence("Ins")},
             Needs::kNothing, [this] { Add(); });
  LetKeysBeTheLists(AddCommand(menu, TextId::kMainMenuEdit, "edit",
                               {QKeySequence(Qt::Key_Return), QKeySequence(Qt::Key_Enter)}, Needs::kOne,
                               [this] { Edit(); }));
  AddCommand(menu, TextId::kMainMenuRename, "rename", {QKeySequence("F2")}, Needs::kOne,
             [this] { Rename(); });
  AddCommand(menu, TextId::kMainMenuDuplicate, "duplicate", {QKeySequence("Ctrl+D")}, Needs::kOne,
             [this] { Duplicate(); });
  LetKeysBeTheLists(AddCommand(menu, TextId::kMainMenuRemove, "remove", {QKeySequence("Del")}, Needs::kSome,
                               [this] { Remove(); }));
  menu->addSeparator();
  for (std::size_t kind = 0; kind < kActionRows; ++kind) {
    const int number = static_cast<int>(kind) + 1;
    AddCommand(menu, kOpenCommands[kind].caption, kOpenCommands[kind].command,
               {QKeySequence(QString("Ctrl+%1").arg(number))}, Needs::kOne,
               [this, kind] { OpenDestination(kind); });
  }
  menu->addSeparator();
  AddCommand(menu, TextId::kMainMenuTester, "tester", {QKeySequence("Ctrl+T")}, Needs::kNothing,
             [this] { OpenTester(); });
  menu->addSeparator();
  AddCommand(menu, TextId::kMainMenuQuit, "quit", {QKeySequence("Ctrl+Q"), QKeySequence("Ctrl+W")},
             Needs::kNothing, [this] { close(); });
}

void frmMain::MakeOtherMenus() {
  QMenu* shown = MakeMenu(TextId::kMainMenuView);
  AddCommand(shown, TextId::kMainMenuFilter, "find", {QKeySequence("Ctrl+F")}, Needs::kNothing,
             [this] { filter_->setFocus(Qt::ShortcutFocusReason); });
  AddCommand(shown, TextId::kMainMenuTest, "try", {QKeySequence("Ctrl+E")}, Needs::kNothing,
             [this] { test_->setFocus(Qt::ShortcutFocusReason); });
  shown->addSeparator();
  LetKeysBeTheLists(AddCommand(shown, TextId::kMainMenuSelectAll, "selectAll", {QKeySequence("Ctrl+A")},
                               Needs::kRows, [this] { view_->selectAll(); }));
  AddCommand(shown, TextId::kMainMenuRefresh, "refresh", {QKeySequence("F5")}, Needs::kNothing,
             [this] { Refresh(); });
  QMenu* settings = MakeMenu(TextId::kMainMenuSettings);
  const auto edit = [this](EditMode mode) { return [this, mode] { OpenSettings(mode); }; };
  AddCommand(settings, TextId::kMainMenuStandard, "standard", {}, Needs::kNothing, edit(EditMode::kStandard));
  AddCommand(settings, TextId::kMainMenuTestSettings, "testSettings", {}, Needs::kNothing,
             edit(EditMode::kTest));
  AddCommand(settings, TextId::kMainMenuGeneral, "general", {}, Needs::kNothing, edit(EditMode::kGeneral));
  AddCommand(MakeMenu(TextId::kMainMenuHelp), TextId::kMainMenuAbout, "about", {}, Needs::kNothing, [this] {
    const auto show = services_.show_about;
    show(this);
  });
}

void frmMain::MakeToolBar() {
  auto* bar = new QToolBar(this);
  bar->setMovable(false);
  bar->setContextMenuPolicy(Qt::PreventContextMenu);
  bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  bar->setIconSize(QSize(16, 16));
  for (const auto& row : kToolBar) {
    auto* action = findChild<QAction*>(row.command);
    action->setIconText(Text(row.caption));
    action->setIcon(Picture(row.picture));
    action->setToolTip(Text(row.caption) +
                       QString(" (%1)").arg(action->shortcut().toString(QKeySequence::NativeText)));
    bar->addAction(action);
  }
  bar->insertSeparator(findChild<QAction*>("remove"));
  bar->addSeparator();
  AddOpenButton(bar);
  addToolBar(bar);
}

void frmMain::AddOpenButton(QToolBar* bar) {
  auto* open = new QToolButton(bar);
  open->setText(Text(TextId::kToolOpen));
  open->setToolTip(Text(TextId::kToolOpenHint));
  open->setIcon(Picture("folder"));
  open->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  open->setPopupMode(QToolButton::InstantPopup);
  for (const auto& row : kOpenCommands) open->addAction(findChild<QAction*>(row.command));
  bar->addWidget(open);
  open_button_ = open;
}

void frmMain::MakeContextMenu() {
  context_menu_ = new QMenu(this);
  context_menu_->setObjectName("context");
  for (const char* name : {"edit", "rename", "duplicate", "remove", "", "openExtract", "openMove", "openCopy",
                           "", "tester", "", "add", "selectAll", "refresh"}) {
    if (*name == '\0') {
      context_menu_->addSeparator();
    } else {
      context_menu_->addAction(findChild<QAction*>(name));
    }
  }
}

void frmMain::RestoreLooks() {
  const ColumnMemory columns = memory_.Columns();
  const bool is_remembered = columns.widths.size() == ProfileModel::kColumns;
  const int character = fontMetrics().averageCharWidth();
  view_->header()->setStretchLastSection(true);
  for (int i = 0; i < ProfileModel::kColumns; ++i) {
    int width = i == ProfileModel::kAction ? ActionMarks::Width(font()) : kColumnCharacters[i] * character;
    if (is_remembered && columns.widths[i] > 0 && columns.widths[i] <= kWidestColumn) {
      width = columns.widths[i];
    }
    view_->setColumnWidth(i, width);
  }
  view_->setColumnHidden(ProfileModel::kMatch, true);
  view_->setSortingEnabled(true);
  const bool is_column = columns.sorted >= 0 && columns.sorted < ProfileModel::kColumns;
  view_->sortByColumn(is_column ? columns.sorted : int{ProfileModel::kTitle},
                      columns.descending ? Qt::DescendingOrder : Qt::AscendingOrder);
  resize(kFirstSize);
  if (!memory_.RestorePlace(this)) CentreOnScreen(this);
}

void frmMain::KeepLooks() const {
  ColumnMemory columns;
  // A column that is hidden says that it has no width.
  const bool is_hidden = view_->isColumnHidden(ProfileModel::kMatch);
  view_->setColumnHidden(ProfileModel::kMatch, false);
  for (int i = 0; i < ProfileModel::kColumns; ++i) columns.widths += view_->columnWidth(i);
  view_->setColumnHidden(ProfileModel::kMatch, is_hidden);
  const QHeaderView* header = view_->header();
  columns.sorted = header->sortIndicatorSection();
  columns.descending = header->sortIndicatorOrder() == Qt::DescendingOrder;
  memory_.KeepColumns(columns);
  memory_.KeepPlace(*this);
}

void frmMain::ShowContextMenu(const QPoint& position) {
  context_menu_->popup(view_->viewport()->mapToGlobal(position));
}

// Asked for with the key, it belongs to the row and not to where the pointer happens to be.
void frmMain::ShowContextMenuAtRow() {
  const QRect row = view_->visualRect(view_->currentIndex());
  ShowContextMenu(view_->viewport()->rect().intersects(row) ? row.bottomLeft() : QPoint(0, 0));
}

}  // namespace quendle
