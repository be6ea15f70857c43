// The walk over the paths of a run, filling the state for each, and doing it.
#include "core/action_form.h"

#include <algorithm>
#include <utility>

#include "base/display.h"
#include "base/modSystem.h"
#include "base/text.h"
#include "core/failure_text.h"
#include "core/profile_choice.h"
#include "resources/string_table.h"

namespace quendle {
namespace {

bool IsMissing(const platform::Result& result) {
  return result.code == platform::Code::kNotFound || result.code == platform::Code::kNotFolder;
}

std::string Ranked(const std::string& title, std::size_t rank, std::size_t all) {
  return ForDisplay(title) +
         LoadText(TextId::kInBrackets, {std::to_string(rank) + "/" + std::to_string(all)});
}

}  // namespace

ActionForm::ActionForm(const Environment& environment, std::optional<std::string> profile)
    : environment_(environment), profile_(std::move(profile)) {
  environment_.mover.CMDLINECURRENT = 0;
  if (profile_) profile_ = environment_.mover.FindTitle(*profile_).value_or(*profile_);
}

bool ActionForm::Advance() {
  clsMover& mover = environment_.mover;
  while (mover.CMDLINECURRENT <= mover.CMDLINEMAX && ++mover.CMDLINECURRENT <= mover.CMDLINEMAX) {
    asks_ = false;
    if (!Fill()) continue;
    if (!NeedsUser() && Execute()) continue;
    asks_ = true;
    LeaveOutExtraction();
    UpdateView();
    return true;
  }
  view_ = {};
  return false;
}

bool ActionForm::NeedsUser() const {
  return environment_.mover.SHOWUSERFORM || !ChooseProfile(environment_.mover, profile_).IsClear();
}

platform::Result ActionForm::ReadTarget() {
  platform::Result result = environment_.mover.SetTarget();
  if (result.ok() && environment_.file_info.pFileNameLong().empty()) {
    result = Failure(platform::Code::kFailed, environment_.mover.ORIGINALPATH, why::kNotInFolder);
  }
  return result;
}

// False when there is no such target, which is noted.
bool ActionForm::Fill() {
  view_ = {};
  const platform::Result found = ReadTarget();
  const std::string& path = environment_.mover.ORIGINALPATH;
  if (!found.ok()) {
    NoteUndone(path, found.reason);
    if (IsMissing(found)) {
      missing_.push_back(path);
    } else {
      Refuse(path, LoadText(found.reason));
    }
    return false;
  }
  if (const platform::Result read = environment_.mover.SetItemDataToArray(); !read.ok()) {
    NoteUndone(path, why::kSettingsUnreadable(why::kAbout(read.path, read.reason)));
    Refuse(read.path, LoadText(read.reason));
    return false;
  }
  FillProfiles("");
  if (environment_.mover.IsTypeUnknown()) {
    NoteUndone(path, why::kInterrupted);
    return false;
  }
  LoadProfile();
  return true;
}

// Selects the wanted title when it matches, else the one that was named for the run, else the first.
void ActionForm::FillProfiles(const std::string& wanted) {
  clsMover& mover = environment_.mover;
  mover.GetAccordantTitles();
  titles_ = mover.Matches();
  view_ = {};
  view_.edits_profile = !titles_.empty();
  auto selected = std::find(titles_.begin(), titles_.end(), wanted);
  if (selected == titles_.end() && profile_) selected = std::find(titles_.begin(), titles_.end(), *profile_);
  if (selected == titles_.end() && profile_) {
    view_.profiles = {ForDisplay(*profile_)};
    titles_ = {*profile_};
  } else if (titles_.empty()) {
    view_.profiles = {LoadText(TextId::kNoProfile) +
                      LoadText(TextId::kInBrackets, {LoadText(TextId::kUnregistered)})};
    titles_ = {""};
  } else {
    if (selected != titles_.end()) view_.selected = static_cast<int>(selected - titles_.begin());
    for (std::size_t i = 0; i < titles_.size(); ++i) {
      view_.profiles.push_back(Ranked(titles_[i], i + 1, titles_.size()));
    }
  }
  view_.selected = std::max(view_.selected, 0);
}

void ActionForm::LoadProfile() {
  clsMover& mover = environment_.mover;
  refusal_ = LoadValues();
  view_.problem = LoadText(refusal_);
  if (!view_.problem.empty()) {
    // What was read so far belongs to no profile.
    mover.ACTION = kNoSteps;
    for (std::size_t row = 0; row < kActionRows; ++row) Destination(row).clear();
  }
  if (asks_) LeaveOutExtraction();
  view_.rename = mover.SMARTRENAME;
  for (std::size_t row = 0; row < kActionRows; ++row) {
    std::string folder = Destination(row);
    if (row > 0 && !mover.DOESFOLDER) folder.erase(folder.rfind(Separator(kHostStyle)) + 1);
    FillField(row, folder);
  }
  UpdateView();
}

// Why the selected profile cannot be used; empty when it can.
Reason ActionForm::LoadValues() {
  clsMover& mover = environment_.mover;
  Reason why;
  const std::string title = SelectedTitle();
  const ProfileChoice choice = ChooseProfile(mover, title.empty() ? std::nullopt : std::optional(title));
  if (choice.IsClear()) {
    (void)FillFromChoice(choice, &mover, &why);
    return why;
  }
  mover.SetDefaultItemData();
  for (std::size_t row = 0; row < kActionRows; ++row) {
    Destination(row) = mover.GetTargetPathByFolder(kStepKinds[row], Destination(row));
  }
  return {};
}

// Its box is disabled then, so that the user could not do it.
void ActionForm::LeaveOutExtraction() {
  clsMover& mover = environment_.mover;
  if (mover.ARCHIVETYPE == 0) mover.ACTION = WithStep(mover.ACTION, StepKind::kExtract, false);
}

bool ActionForm::Execute() {
  clsMover& mover = environment_.mover;
  const std::string title = SelectedTitle();
  const std::string path = mover.ORIGINALPATH;
  const bool was_folder = mover.DOESFOLDER;
  const platform::Result found = ReadTarget();
  if (!found.ok()) {
    NoteUndone(path, found.reason);
    Refuse(path, LoadText(found.reason));
    return true;
  }
  if (mover.DOESFOLDER != was_folder) {
    Refuse(path, LoadText(why::kReplaced));
    return !Fill();
  }
  std::string problem = view_.problem;
  // Of what nobody has looked at, the files were read a moment ago.
  if (problem.empty() && asks_ && !title.empty() && !mover.SettingsHold(title)) {
    problem = LoadText(why::kProfileGone);
  }
  if (!problem.empty()) {
    Refuse(title.empty() ? LoadText(TextId::kNoProfile) : title, problem);
    if (!refusal_.empty()) mover.NoteTold(title, refusal_);
    Reload(title);
    return false;
  }
  mover.ActionMain();
  ReportFailure();
  return true;
}

void ActionForm::Refuse(const std::string& name, const std::string& problem) {
  environment_.user.ShowMessage(UserInterface::MessageKind::kExclamation,
                                ForDisplay(name) + ": " + ForDisplay(problem));
}

void ActionForm::ReportFailure() {
  const clsMover& mover = environment_.mover;
  for (const ActionStep& step : mover.Steps()) {
    if (step.result == StepResult::kDone) continue;
    NoteUndone(mover.ORIGINALPATH, step.error);
    break;
  }
  const std::string text = FailureText(mover.ORIGINALPATH, mover.Steps());
  if (!text.empty()) environment_.user.ShowMessage(UserInterface::MessageKind::kExclamation, text);
}

void ActionForm::NoteUndone(const std::string& path, const Reason& reason) {
  undone_.push_back(ForDisplay(path) + ": " + ForDisplay(Sentence(reason, Language::kEnglish)));
}

void ActionForm::Skip() {
  NoteUndone(environment_.mover.ORIGINALPATH, why::kSkipped);
}

void ActionForm::SkipRest() {
  clsMover& mover = environment_.mover;
  Skip();
  while (++mover.CMDLINECURRENT <= mover.CMDLINEMAX)
    NoteUndone(mover.CurrentCmdLineString(), why::kNotBegunYet);
}

std::string ActionForm::SelectedTitle() const {
  return titles_.at(static_cast<std::size_t>(view_.selected));
}

void ActionForm::Reload(const std::string& title) {
  const platform::Result read = environment_.mover.SetItemDataToArray();
  FillProfiles(title);
  LoadProfile();
  if (read.ok()) return;
  Refuse(read.path, LoadText(read.reason));
  view_.problem = LoadText(read.reason);
  UpdateView();
}

}  // namespace quendle
