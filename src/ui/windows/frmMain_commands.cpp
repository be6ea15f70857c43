// What the list of profiles does when the user wants something.
#include <QCoreApplication>
#include <QDropEvent>
#include <QLineEdit>
#include <QMenuBar>
#include <QMimeData>
#include <QTimer>
#include <QToolBar>
#include <QTreeView>
#include <algorithm>

#include "base/display.h"
#include "base/modString.h"
#include "core/modMain.h"
#include "core/untold_paths.h"
#include "resources/string_table.h"
#include "ui/parts/busy.h"
#include "ui/parts/dropped_files.h"
#include "ui/parts/elided_label.h"
#include "ui/parts/text.h"
#include "ui/windows/ask_title.h"
#include "ui/windows/frmMain.h"

namespace quendle {
namespace {

constexpr const char* kLineBreak = "\r\n";

}  // namespace

// False when it has failed.
bool frmMain::Tell(const platform::Result& result) {
  if (result.ok()) return true;
  services_.show_message(LoadText(TextId::kProfileNotChanged) + kLineBreak + kLineBreak +
                             ForDisplay(result.path) + kLineBreak + ForDisplay(LoadText(result.reason)),
                         kButtonsOk, kIconCritical, "");
  return false;
}

void frmMain::Add() {
  std::string added;
  {
    const Busy busy(&is_busy_);
    const TitleQuestion question =
        NewTitleQuestion([this](const std::string& typed) { return list_.NewTitleProblem(typed); });
    const std::string title = AskTitle(question, services_.show_input, services_.show_message);
    if (title.empty()) return;
    if (const auto saved = services_.open_editor(this, EditMode::kNew, title)) {
      added = *saved;
      Tell(list_.Sort());
    }
  }
  Refresh(added);
}

void frmMain::Edit() {
  const std::vector<std::string> titles = SelectedTitles();
  if (titles.size() != 1) return;
  std::string edited;
  {
    const Busy busy(&is_busy_);
    if (Tell(list_.CheckThere(titles.front()))) {
      edited = services_.open_editor(this, EditMode::kProfile, titles.front()).value_or("");
    }
  }
  Refresh(edited);
}

void frmMain::Rename() {
  const std::vector<std::string> titles = SelectedTitles();
  if (titles.size() != 1) return;
  std::string title;
  {
    const Busy busy(&is_busy_);
    const std::string old = titles.front();
    title = AskTitle({LoadText(TextId::kRenamePrompt, {ForDisplay(old)}), TextId::kRenameCaption, old,
                      [this, &old](const std::string& typed) { return list_.NewTitleProblem(typed, old); }},
                     services_.show_input, services_.show_message);
    if (title.empty()) return;
    if (!Tell(list_.Rename(titles.front(), title))) title.clear();
  }
  Refresh(title);
}

void frmMain::Duplicate() {
  const std::vector<std::string> titles = SelectedTitles();
  if (titles.size() != 1) return;
  std::string copy = list_.TitleForCopy(titles.front());
  {
    const Busy busy(&is_busy_);
    if (!Tell(list_.Duplicate(titles.front(), copy))) copy.clear();
  }
  Refresh(copy);
}

void frmMain::Remove() {
  const std::vector<std::string> titles = SelectedTitles();
  if (titles.empty()) return;
  const int first = SelectedRows().front();
  {
    const Busy busy(&is_busy_);
    const std::string prompt =
        LoadText(TextId::kRemovePrompt) + kLineBreak + NameLines(titles, titles.size());
    const std::int32_t answer =
        services_.show_message(prompt, kButtonsYesNo, kIconExclamation, LoadText(TextId::kRemoveCaption));
    if (answer != kAnswerYes) return;
    Tell(list_.Remove(titles));
  }
  Refresh();
  if (model_.rowCount() == 0 || view_->selectionModel()->hasSelection()) return;
  SelectRow(std::min(first, model_.rowCount() - 1));
}

void frmMain::OpenDestination(std::size_t kind) {
  const std::vector<int> selected = SelectedRows();
  if (selected.size() != 1) return;
  const std::string folder = model_.RowAt(selected.front()).folders[kind].path;
  const Busy busy(&is_busy_);
  if (folder.empty()) {
    services_.show_message(LoadText(why::kNoDestination), kButtonsOk, kIconExclamation, "");
  } else if (!FolderExists(folder)) {
    services_.show_message(LoadText(TextId::kNoSuchFolder) + kLineBreak + ForDisplay(folder), kButtonsOk,
                           kIconExclamation, "");
  } else if (const platform::Result opened = services_.show_in_file_manager(folder); !opened.ok()) {
    services_.show_message(LoadText(TextId::kFolderNotOpened) + kLineBreak + kLineBreak + ForDisplay(folder) +
                               kLineBreak + ForDisplay(LoadText(opened.reason)),
                           kButtonsOk, kIconExclamation, "");
  }
}

void frmMain::OpenTester() {
  const std::vector<int> selected = SelectedRows();
  const Busy busy(&is_busy_);
  const std::string pattern = selected.size() == 1 ? model_.RowAt(selected.front()).pattern : "";
  services_.open_tester(this, pattern, list_.TestedName());
}

void frmMain::OpenSettings(EditMode mode) {
  {
    const Busy busy(&is_busy_);
    services_.open_editor(this, mode, "");
  }
  Refresh();
}

// Leaves out what is too much for one run; false when the user does not want the rest either.
bool frmMain::TellsSurplus(std::vector<std::string>* paths) {
  constexpr std::size_t kMost = kMostPaths;
  if (paths->size() <= kMost) return true;
  const std::vector<std::string> surplus(paths->begin() + kMost, paths->end());
  paths->resize(kMost);
  const std::string prompt =
      LoadText(TextId::kTooManyFiles, {std::to_string(kMost), std::to_string(surplus.size())}) + kLineBreak +
      NameLines(surplus, surplus.size());
  return services_.show_message(prompt, kButtonsOkCancel, kIconExclamation,
                                LoadText(TextId::kFilesCaption)) == kAnswerOk;
}

// The list stays in sight, but does nothing while the files are worked through.
void frmMain::Dispatch(const std::vector<std::string>& dropped) {
  if (is_busy_) return;
  std::vector<std::string> paths = dropped;
  {
    const Busy busy(&is_busy_);
    if (!TellsSurplus(&paths)) return;
    QWidget* focus = focusWidget();
    std::vector<QWidget*> parts = {menuBar(), centralWidget(), findChild<QToolBar*>()};
    for (QWidget* part : parts) part->setEnabled(false);
    status_->SetText(Text(TextId::kAtWork));
    left_ = {};
    services_.dispatch(paths);
    QCoreApplication::processEvents();  // what was typed meanwhile was not meant for the list
    for (QWidget* part : parts) part->setEnabled(true);
    if (focus != nullptr) focus->setFocus(Qt::OtherFocusReason);
  }
  Refresh();
  if (services_.is_interrupted()) {
    close();
  } else {
    activateWindow();
  }
}

void frmMain::dragEnterEvent(QDragEnterEvent* event) {
  dragMoveEvent(event);
}

void frmMain::dragMoveEvent(QDragMoveEvent* event) {
  if (is_busy_ || DroppedPaths(*event->mimeData()).empty()) {
    event->ignore();
    return;
  }
  // Whatever becomes of the files is up to this program: the one they come from must not remove them.
  event->setDropAction(Qt::CopyAction);
  event->accept();
  status_->SetText(
      Text(TestPlace().contains(event->position().toPoint()) ? TextId::kDropTests : TextId::kDropDispatches));
}

void frmMain::dragLeaveEvent(QDragLeaveEvent* event) {
  UpdateTexts();
  QMainWindow::dragLeaveEvent(event);
}

// A file that misses the field by a little must not be moved away: all that is beside the filter counts.
QRect frmMain::TestPlace() const {
  const int left = filter_->mapTo(this, filter_->rect().topRight()).x() + 1;
  const int top = centralWidget()->y();
  return {left, top, width() - left, view_->mapTo(this, QPoint(0, 0)).y() - top};
}

void frmMain::dropEvent(QDropEvent* event) {
  const std::vector<std::string> paths = DroppedPaths(*event->mimeData());
  if (is_busy_ || paths.empty()) {
    event->ignore();
    return;
  }
  event->setDropAction(Qt::CopyAction);
  event->accept();
  UpdateTexts();
  if (TestPlace().contains(event->position().toPoint())) {
    test_->setText(ToQt(ForDisplay(SplitPath(RemoveBackslashes(paths.front())).name)));
    test_->setFocus(Qt::OtherFocusReason);
    return;
  }
  // The program that the files come from waits until this returns.
  QTimer::singleShot(0, this, [this, paths] { Dispatch(paths); });
}

}  // namespace quendle
