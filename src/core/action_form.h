// The action window without its widgets: the walk over the paths of a run, what is known of the current one and chosen
// for it, and the commands. The window shows View() and hands on what the user does.
//
// The three actions are counted as the window orders them (kStepKinds): 0 extract, 1 move, 2 copy.
#pragma once

#include <array>
#include <cstddef>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "core/clsMover.h"

namespace quendle {

inline constexpr std::size_t kActionRows = std::size(kStepKinds);

struct ActionView {
  std::string title;   // "2/5 - Reports"
  std::string target;  // the path as ForDisplay shows it
  bool is_folder = false;
  bool is_archive = false;

  std::vector<std::string>
      profiles;       // "Reports 【1/2】", ...; "（なし） 【未登録】" for a path that matches none
  int selected = -1;  // of `profiles`
  bool edits_profile = false;  // the editor is offered for the selected profile, else a new one
  std::string problem;         // why the selected profile cannot be used; OK is refused then

  struct Row {
    bool is_ticked = false;
    bool can_tick = false;
    bool can_fill = false;  // the folder's field and its button
    std::string folder;     // as ForDisplay shows it
  };
  std::array<Row, kActionRows> rows;

  int rename = 0;  // list index: 0 as the profile says, 1 never, 2 always, 3 on a collision
  bool can_rename = false;
  bool can_set_extraction = false;  // overwrite or update, no doubled folder, open the folder
  bool overwrites = false;          // else it updates
  bool smart_make_dir = false;
  bool open_dir = false;

  // What the profile says of the entries to take, to leave, and to open; not empty: the mark is shown, with
  // this as its tooltip.
  std::array<std::string, 3> marks;
};

class ActionForm {
 public:
  struct Environment {
    clsMover& mover;
    const clsFileInfo& file_info;
    UserInterface& user;
  };

  // `profile`: the title that is taken for every path, whether its pattern matches or not.
  ActionForm(const Environment& environment, std::optional<std::string> profile);

  // Goes on to the next path; the first call to the first one. Paths that cannot be found are passed over, those
  // for which nobody has to be asked are done at once. True when the user is to settle the current one, false when
  // no path is left. Failures are told through `user`.
  bool Advance();

  // Of the current path. Valid until the next call that changes anything.
  const ActionView& View() const { return view_; }

  // The paths of the run that were not done: missing, failed, skipped, or never begun. As ForDisplay shows them, each
  // with the reason behind ": ".
  const std::vector<std::string>& Undone() const { return undone_; }
  // Those of them that could not be found, of which nobody has been told through `user`. As they were given.
  const std::vector<std::string>& Missing() const { return missing_; }

  // Each changes the state of the dispatcher and the view with it. Values outside the view's range are programming
  // errors.
  void SelectProfile(int index);
  void StepProfile(int step);  // +1 the next, -1 the previous one, from the last to the first and back
  void Tick(std::size_t row, bool ticked);
  bool ToggleRow(std::size_t row);  // true when it is ticked now and its field wants the focus
  void TypeFolder(std::size_t row, const std::string& shown);  // what is in the field, as ForDisplay shows it
  void ChooseFolder(std::size_t row, const std::string& folder);  // a folder that was picked
  void SelectRename(int index);
  void StepRename();
  void SetOverwrites(bool overwrites);
  void SetSmartMakeDir(bool on);
  void SetOpenDir(bool on);

  // What OK would do now, step by step.
  std::vector<ActionStep> Plan();

  // Does the current path. False when it was not tried, which the user has been told, with the reason, and the current
  // path stays: the profile has been changed or removed since the window shows it, or the settings cannot be read any
  // more. Otherwise Advance is next.
  bool Execute();
  // Leaves it undone. Advance is next.
  void Skip();
  // Leaves it and all that follow undone.
  void SkipRest();

  // The folder to begin with when one is picked for this row.
  std::string StartFolder(std::size_t row) const;

  // For the editor: the title of the selected profile, empty for none.
  std::string SelectedTitle() const;
  // Reads the settings anew, after the editor has saved, and selects that title where it matches the path.
  void Reload(const std::string& title);

 private:
  // What a destination's field holds.
  struct Field {
    std::string path;    // as the field shows it, but unescaped
    std::string shown;   // what is in the field
    std::string folder;  // what the final path is computed from; empty: `path` is meant as it stands
    bool is_typed = false;
  };

  platform::Result ReadTarget();
  bool Fill();
  void FillProfiles(const std::string& wanted);
  void LoadProfile();
  Reason LoadValues();
  void LeaveOutExtraction();
  bool NeedsUser() const;
  void Refuse(const std::string& name, const std::string& problem);
  std::string& Destination(std::size_t row);
  void FillField(std::size_t row, const std::string& folder);
  void RememberFolder(std::size_t row);
  void ComputeFields();
  void UpdateView();
  void UpdateMarks();
  std::string TitleText() const;
  void ReportFailure();
  void NoteUndone(const std::string& path, const Reason& reason);

  Environment environment_;
  std::optional<std::string> profile_;
  std::vector<std::string> titles_;  // beside view_.profiles; empty for the unregistered entry
  std::array<Field, kActionRows> fields_;
  Reason refusal_;     // why the selected profile must not be acted on
  bool asks_ = false;  // the user is to settle the current path
  ActionView view_;
  std::vector<std::string> undone_;
  std::vector<std::string> missing_;
};

}  // namespace quendle
