// What the user changes for the current path, and what the window shows of it.
#include <algorithm>

#include "base/display.h"
#include "base/modString.h"
#include "base/modSystem.h"
#include "base/text.h"
#include "core/action_form.h"
#include "resources/string_table.h"

namespace quendle {
namespace {

constexpr int kRenameEntries = 4;

void CheckRange(int value, int count) {
  if (value < 0 || value >= count) ProgrammingError("entry outside its list");
}

}  // namespace

std::string& ActionForm::Destination(std::size_t row) {
  clsMover& mover = environment_.mover;
  std::string* const destinations[kActionRows] = {&mover.EXTRACTTO, &mover.MOVETO, &mover.COPYTO};
  return *destinations[row];
}

// Shows the destination, which was computed from `folder`.
void ActionForm::FillField(std::size_t row, const std::string& folder) {
  fields_[row] = {Destination(row), ForDisplay(Destination(row)), folder, false};
  RememberFolder(row);
}

// A name that is computed from a folder is chosen anew when it is taken before the file is there.
void ActionForm::RememberFolder(std::size_t row) {
  clsMover& mover = environment_.mover;
  if (row == 1) mover.MOVEINTO = fields_[row].folder;
  if (row == 2) mover.COPYINTO = fields_[row].folder;
}

void ActionForm::SelectProfile(int index) {
  CheckRange(index, static_cast<int>(titles_.size()));
  view_.selected = index;
  LoadProfile();
}

void ActionForm::StepProfile(int step) {
  const int count = static_cast<int>(titles_.size());
  SelectProfile((view_.selected + step + count) % count);
}

void ActionForm::Tick(std::size_t row, bool ticked) {
  std::int16_t& action = environment_.mover.ACTION;
  if (!view_.rows.at(row).can_tick) return;
  action = WithStep(action, kStepKinds[row], ticked);
  UpdateView();
}

bool ActionForm::ToggleRow(std::size_t row) {
  const bool was_ticked = view_.rows.at(row).is_ticked;
  Tick(row, !was_ticked);
  return !was_ticked && view_.rows[row].is_ticked;
}

void ActionForm::TypeFolder(std::size_t row, const std::string& shown) {
  Field& field = fields_.at(row);
  if (shown == field.shown) return;
  // Only who saw something escaped writes so, too.
  const bool is_escaped = field.shown != field.path;
  field.path = PlainPath(is_escaped ? FromDisplay(shown) : shown);
  field.shown = shown;
  field.is_typed = true;
  const bool is_folder = field.path.ends_with(Separator(kHostStyle)) || FolderExists(field.path);
  field.folder = is_folder ? field.path : "";
  RememberFolder(row);
  Destination(row) =
      is_folder ? environment_.mover.GetTargetPathByFolder(kStepKinds[row], field.folder) : field.path;
  UpdateView();
}

void ActionForm::ChooseFolder(std::size_t row, const std::string& folder) {
  CheckRange(static_cast<int>(row), static_cast<int>(kActionRows));
  Destination(row) = environment_.mover.GetTargetPathByFolder(kStepKinds[row], folder);
  FillField(row, folder);
  UpdateView();
}

void ActionForm::SelectRename(int index) {
  CheckRange(index, kRenameEntries);
  clsMover& mover = environment_.mover;
  if (!view_.can_rename) return;
  const std::optional<ProfileValues> profile = mover.Settings().Profile(SelectedTitle());
  const std::int16_t own = profile ? profile->Number(TextId::kSmartRename)
                                   : mover.Settings().Standard().Number(TextId::kSmartRename);
  mover.SMARTRENAME = index == 0 ? own : static_cast<std::int16_t>(index);
  view_.rename = index;
  ComputeFields();
  UpdateView();
}

void ActionForm::StepRename() {
  SelectRename((view_.rename + 1) % kRenameEntries);
}

// A destination that was typed as a final path stays.
void ActionForm::ComputeFields() {
  for (std::size_t row = 1; row < kActionRows; ++row) {
    Field& field = fields_[row];
    if (field.folder.empty()) continue;
    Destination(row) = environment_.mover.GetTargetPathByFolder(kStepKinds[row], field.folder);
    if (!field.is_typed) FillField(row, std::string(field.folder));
  }
}

void ActionForm::SetOverwrites(bool overwrites) {
  environment_.mover.EXTRACTTYPE = overwrites ? 1 : 2;
  UpdateView();
}

void ActionForm::SetSmartMakeDir(bool on) {
  environment_.mover.SMARTMAKEDIR = on;
  UpdateView();
}

void ActionForm::SetOpenDir(bool on) {
  environment_.mover.OPENDIR = on;
  UpdateView();
}

std::vector<ActionStep> ActionForm::Plan() {
  if (!view_.problem.empty()) return {};
  return environment_.mover.PlanSteps(true);
}

std::string ActionForm::StartFolder(std::size_t row) const {
  const Field& field = fields_.at(row);
  if (row == 0 || environment_.mover.DOESFOLDER) return field.path;
  return field.folder.empty() ? SplitPath(field.path).folder : field.folder;
}

void ActionForm::UpdateView() {
  const clsMover& mover = environment_.mover;
  view_.title = TitleText();
  view_.target = ForDisplay(mover.ORIGINALPATH);
  view_.is_folder = mover.DOESFOLDER;
  view_.is_archive = mover.ARCHIVETYPE != 0;
  for (std::size_t row = 0; row < kActionRows; ++row) {
    ActionView::Row& shown = view_.rows[row];
    shown.is_ticked = Includes(mover.ACTION, kStepKinds[row]);
    shown.can_tick = view_.problem.empty() && (row > 0 || view_.is_archive);
    shown.can_fill = shown.is_ticked && shown.can_tick;
    shown.folder = fields_[row].shown;
  }
  const bool brings = view_.rows[1].is_ticked || view_.rows[2].is_ticked;
  view_.can_rename = !mover.DOESFOLDER && brings;
  view_.can_set_extraction = view_.rows[0].can_fill;
  view_.overwrites = mover.EXTRACTTYPE == 1;
  view_.smart_make_dir = mover.SMARTMAKEDIR;
  view_.open_dir = mover.OPENDIR;
  UpdateMarks();
}

void ActionForm::UpdateMarks() {
  view_.marks = {};
  if (!view_.can_set_extraction) return;
  const clsMover& mover = environment_.mover;
  view_.marks = {mover.INCLUDE, mover.EXCLUDE, mover.OPENFILE};
}

std::string ActionForm::TitleText() const {
  const clsMover& mover = environment_.mover;
  const std::string counter =
      std::to_string(mover.CMDLINECURRENT) + "/" + std::to_string(mover.CMDLINEMAX) + " - ";
  if (mover.DOESFOLDER) return counter + LoadText(TextId::kFolderTitle);
  const std::string title = SelectedTitle();
  const std::string shown = title.empty() ? LoadText(TextId::kNoProfile) : ForDisplay(title);
  if (mover.PATTERNMATCHCOUNT() > 0) return counter + shown;
  return counter + LoadText(TextId::kUnregisteredFile) + " - " + shown;
}

}  // namespace quendle
