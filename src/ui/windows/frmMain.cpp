#include "ui/windows/frmMain.h"

#include <QAction>
#include <QCloseEvent>
#include <QContextMenuEvent>
#include <QDateTime>
#include <QEventLoop>
#include <QFileInfo>
#include <QItemSelection>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QShortcut>
#include <QTreeView>
#include <algorithm>
#include <unordered_set>

#include "base/display.h"
#include "core/untold_paths.h"
#include "files/file_manager.h"
#include "resources/version.h"
#include "ui/parts/elided_label.h"
#include "ui/parts/form_helpers.h"
#include "ui/parts/modListBox.h"
#include "ui/parts/text.h"
#include "ui/windows/frmAbout.h"
#include "ui/windows/frmEdit.h"
#include "ui/windows/frmRegex.h"

namespace quendle {
namespace {

constexpr int kHintWidth =
    240;  // of what was typed, in logical pixels: a word that is too long is not wrapped

}  // namespace

void RunProfileList(const WindowsHost& host) {
  Globals& globals = host.globals;
  MainServices services;
  services.open_editor = [&globals](QWidget* owner, EditMode mode, const std::string& title) {
    return OpenEditor(owner, globals, mode, title);
  };
  services.open_tester = OpenRegexTester;
  services.show_about = [](QWidget* owner) { ShowAbout(owner, FindModuleFolder()); };
  services.show_in_file_manager = [&globals](const std::string& folder) {
    return OpenFolderWithFiler(FileManagerOf(globals.g_PropDefault->Values()), folder);
  };
  services.dispatch = host.dispatch;
  services.is_interrupted = host.interrupt_requested;
  if (host.copy != nullptr) services.take_left = [copy = host.copy] { return copy->TakeLeftPaths(); };
  frmMain window(*globals.g_PropItem, *globals.g_PropDefault, std::move(services), WindowMemory::UsualFile());
  window.Run();
}

frmMain::frmMain(clsPropItem& items, const clsPropDefault& standard, MainServices services,
                 const std::string& memory_file)
    : items_file_(items.FileName()),
      settings_file_(standard.FileName()),
      services_(std::move(services)),
      memory_(memory_file, "frmMain"),
      list_(items, standard),
      model_(list_) {
  // A second copy of the program looks for this title.
  setWindowTitle(ToQt(std::string(kProductName) + " " + GetVersionString()));
  MakeControls();
  MakeMenus();
  MakeToolBar();
  ApplyFormFont(this, true);
  EnableDropOnControls(this);
  RestoreLooks();
  Connect();
  Refresh();
  if (model_.rowCount() > 0) SelectRow(0);
  view_->setFocus();
}

frmMain::~frmMain() = default;

void frmMain::Connect() {
  for (QWidget* control : {static_cast<QWidget*>(filter_), static_cast<QWidget*>(test_),
                           static_cast<QWidget*>(view_), view_->viewport()}) {
    control->installEventFilter(this);
  }
  connect(filter_, &QLineEdit::textChanged, this, [this] { ApplyFilter(); });
  connect(test_, &QLineEdit::textChanged, this, [this] { ApplyTest(); });
  connect(view_, &QTreeView::doubleClicked, this, [this] {
    if (!is_busy_) Edit();
  });
  connect(view_, &QTreeView::customContextMenuRequested, this,
          [this](const QPoint& position) { ShowContextMenu(position); });
  // For keyboards without a key for it.
  connect(new QShortcut(QKeySequence("Shift+F10"), view_, nullptr, nullptr, Qt::WidgetShortcut),
          &QShortcut::activated, this, [this] { ShowContextMenuAtRow(); });
  connect(view_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
          [this] { UpdateCommands(); });
}

void frmMain::Run() {
  QEventLoop loop;
  loop_ = &loop;
  show();
  loop.exec();
  loop_ = nullptr;
}

void frmMain::closeEvent(QCloseEvent* event) {
  if (is_busy_) {
    event->ignore();
    return;
  }
  KeepLooks();
  event->accept();
  if (loop_ != nullptr) loop_->quit();
}

void frmMain::changeEvent(QEvent* event) {
  QMainWindow::changeEvent(event);
  const bool is_back = event->type() == QEvent::ActivationChange && isActiveWindow();
  if (is_back && !is_busy_ && view_ != nullptr && FilesStamp() != stamp_) Refresh();
}

bool frmMain::eventFilter(QObject* watched, QEvent* event) {
  if (watched == view_->viewport() && event->type() == QEvent::Resize) {
    hint_->setGeometry(view_->viewport()->rect().adjusted(24, 12, -24, -12));
  }
  if (watched == view_ && event->type() == QEvent::ContextMenu &&
      static_cast<QContextMenuEvent*>(event)->reason() == QContextMenuEvent::Keyboard) {
    ShowContextMenuAtRow();
    return true;
  }
  if (event->type() != QEvent::KeyPress) return QMainWindow::eventFilter(watched, event);
  const int key = static_cast<QKeyEvent*>(event)->key();
  if (auto* field = qobject_cast<QLineEdit*>(watched)) return HandleFieldKey(field, key);
  if (watched == view_ && key == Qt::Key_Escape) return HandleFieldKey(filter_, key);
  return QMainWindow::eventFilter(watched, event);
}

// True when the key has been dealt with.
bool frmMain::HandleFieldKey(QLineEdit* field, int key) {
  if (key == Qt::Key_Escape) {
    field->clear();
    return true;
  }
  if (key != Qt::Key_Down && key != Qt::Key_Return && key != Qt::Key_Enter) return false;
  view_->setFocus(Qt::TabFocusReason);
  if (!view_->selectionModel()->hasSelection() && model_.rowCount() > 0) {
    SelectRow(0);
  }
  return true;
}

// Other programs, and other copies of this one, change the files.
QString frmMain::FilesStamp() const {
  QString stamp;
  for (const std::string& file : {items_file_, settings_file_}) {
    const QFileInfo info(ToQt(file));
    const QDateTime changed = info.fileTime(QFileDevice::FileMetadataChangeTime);
    stamp += QString("%1 %2 %3;").arg(info.exists()).arg(changed.toMSecsSinceEpoch()).arg(info.size());
  }
  return stamp;
}

// `select`: a title that the user is to see; otherwise what was selected stays so.
void frmMain::Refresh(const std::string& select) {
  const std::vector<std::string> titles = SelectedTitles();
  const std::string current = CurrentTitle();
  stamp_ = FilesStamp();
  const platform::Result read = model_.Refresh();
  read_problem_ = read.ok() ? "" : ForDisplay(LoadText(read.reason)) + "\r\n" + ForDisplay(read.path);
  Select(titles, current);
  if (!select.empty() && !SelectTitle(select)) {
    filter_->clear();
    SelectTitle(select);
  }
  UpdateTexts();
}

// Alone, whatever keys are down at the moment.
void frmMain::SelectRow(int row) {
  const QModelIndex index = model_.index(row, 0);
  view_->selectionModel()->setCurrentIndex(index,
                                           QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
  view_->scrollTo(index);
}

bool frmMain::SelectTitle(const std::string& title) {
  const int row = FindListString(model_, ForDisplay(title), -1);
  if (row < 0) return false;
  SelectRow(row);
  return true;
}

void frmMain::Select(const std::vector<std::string>& titles, const std::string& current) {
  const std::unordered_set<std::string> wanted(titles.begin(), titles.end());
  QItemSelection selection;
  QModelIndex last;
  int begin = -1;  // of the rows in a run that are wanted: thousands of ranges would take their time
  for (int row = 0; row <= model_.rowCount(); ++row) {
    const bool is_row = row < model_.rowCount();
    if (is_row && model_.RowAt(row).title == current) last = model_.index(row, 0);
    const bool is_wanted = is_row && wanted.contains(model_.RowAt(row).title);
    if (is_wanted && begin < 0) begin = row;
    if (is_wanted || begin < 0) continue;
    selection.select(model_.index(begin, 0), model_.index(row - 1, ProfileModel::kColumns - 1));
    begin = -1;
  }
  QItemSelectionModel* selected = view_->selectionModel();
  selected->setCurrentIndex(last, QItemSelectionModel::NoUpdate);
  selected->select(selection, QItemSelectionModel::ClearAndSelect);
  if (last.isValid()) view_->scrollTo(last);
  UpdateCommands();
}

// From top to bottom. The model's own way of telling looks at all ranges for each row.
std::vector<int> frmMain::SelectedRows() const {
  std::vector<int> rows;
  for (const QItemSelectionRange& range : view_->selectionModel()->selection()) {
    if (range.left() > 0) continue;
    for (int row = range.top(); row <= range.bottom(); ++row) rows.push_back(row);
  }
  std::sort(rows.begin(), rows.end());
  return rows;
}

std::vector<std::string> frmMain::SelectedTitles() const {
  std::vector<std::string> titles;
  for (const int row : SelectedRows()) titles.push_back(model_.RowAt(row).title);
  return titles;
}

std::string frmMain::CurrentTitle() const {
  const QModelIndex current = view_->currentIndex();
  return current.isValid() ? model_.RowAt(current.row()).title : "";
}

void frmMain::ApplyFilter() {
  left_ = {};
  const std::vector<std::string> titles = SelectedTitles();
  const std::string current = CurrentTitle();
  model_.SetFilter(filter_->text());
  Select(titles, current);
  UpdateTexts();
}

void frmMain::ApplyTest() {
  left_ = {};
  const std::string name = FromDisplay(FromQt(test_->text()));
  view_->setColumnHidden(ProfileModel::kMatch, name.empty());
  model_.TestName(name);
  UpdateTexts();
}

void frmMain::UpdateCommands() {
  const std::size_t selected = SelectedRows().size();
  for (const Command& command : commands_) {
    const bool is_possible = command.needs == Needs::kNothing ||
                             (command.needs == Needs::kRows && model_.rowCount() > 0) ||
                             (command.needs == Needs::kSome && selected > 0) || selected == 1;
    command.action->setEnabled(is_possible);
  }
  open_button_->setEnabled(selected == 1);
}

void frmMain::TellOfOtherCopy() {
  if (centralWidget()->isEnabled()) UpdateTexts();
}

void frmMain::UpdateTexts() {
  left_.Add(services_.take_left());
  UpdateHint();
  status_->SetText(StatusText());
}

void frmMain::UpdateHint() {
  std::string text;
  if (!read_problem_.empty()) {
    text = LoadText(TextId::kProfilesUnreadable, {read_problem_});
  } else if (list_.Rows().empty()) {
    text = LoadText(TextId::kNoProfilesYet);
  } else if (model_.rowCount() == 0) {
    const QString wanted = hint_->fontMetrics().elidedText(filter_->text(), Qt::ElideMiddle, kHintWidth);
    text = LoadText(TextId::kNoFilterHits, {FromQt(wanted)});
  }
  hint_->setText(ToQt(text).remove('\r'));
  hint_->setVisible(!text.empty());
}

QString frmMain::StatusText() const {
  const std::string all = std::to_string(list_.Rows().size());
  if (left_.count > 0) return ToQt(LineOf(left_));
  if (!list_.Problem().empty() && model_.Filter().isEmpty() && list_.TestedName().empty()) {
    return ToQt(list_.Problem());
  }
  std::string text = model_.Filter().isEmpty()
                         ? LoadText(TextId::kProfileCount, {all})
                         : LoadText(TextId::kFilteredCount, {all, std::to_string(model_.rowCount())});
  if (list_.TestedName().empty()) return ToQt(text);
  const std::string name = ForDisplay(list_.TestedName());
  const int count = list_.MatchCount();
  text += count == 0 ? LoadText(TextId::kNoMatches, {name})
                     : LoadText(TextId::kMatchCount, {name, std::to_string(count)});
  return ToQt(text);
}

}  // namespace quendle
