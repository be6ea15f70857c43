// The dispatcher: the paths of the run, the profiles that match the current one, what is to be done with it,
// and doing it.
//
// For each path the caller sets CMDLINECURRENT, calls SetTarget, SetItemDataToArray and GetAccordantTitles, fills the
// state with one of the Fill functions or from what the user chose, and calls ActionMain (or PlanSteps, to be told what
// it would do). Matching, destinations and extraction all go by the settings as SetItemDataToArray has read them.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "archive/clsArchiver.h"
#include "base/regex.h"
#include "base/user_interface.h"
#include "files/clsFileInfo.h"
#include "files/clsFileOperation.h"
#include "platform/entries/entry_status.h"
#include "settings/action_steps.h"
#include "settings/run_settings.h"

namespace quendle {

struct ProfileIndexEntry {
  std::string Title;
  std::string Pattern;
  Regex expression;  // Pattern, compiled once
};

enum class StepResult {
  kPlanned,  // would be done
  kDone,
  kFailed,   // tried, or known to be impossible
  kSkipped,  // not tried, because of an earlier step or because there is nothing to do
};

struct ActionStep {
  StepKind kind;
  std::string to;  // the folder extracted into; the final path of a copy or move
  StepResult result;
  Reason error;                                               // why it failed or was skipped
  std::optional<ExtractionReport> extraction = std::nullopt;  // of an extraction that was planned or tried
  bool asks = false;     // planned: the user is asked first whether what is there may be overwritten
  bool by_user = false;  // it was left undone because the user cancelled or declined, and for no other reason
};

class clsMover {
 public:
  // What the dispatcher works with; all of it outlives the dispatcher.
  struct Environment {
    clsFileInfo& file_info;
    RunSettings& settings;
    UserInterface& user;
  };

  // `arguments` as SplitCommandLine gives them: element 0 is empty, paths count from 1. Relative ones are
  // made absolute against the current folder now. Reads the settings as SetItemDataToArray does.
  clsMover(const Environment& environment, std::unique_ptr<clsArchiver> archiver,
           std::vector<std::string> arguments);

  // State of the run and of the current path.
  bool SHOWUSERFORM = false;        // confirm each file
  std::int32_t CMDLINEMAX = 0;      // number of paths
  std::int32_t CMDLINECURRENT = 0;  // the current one, from 1
  bool DOESFOLDER = false;          // the current path is a folder
  std::int16_t ARCHIVETYPE = 0;     // 0: not an archive, else as in clsArchiver
  std::string ORIGINALPATH;         // full path of the current file or folder
  std::string MOVETO;               // full path to move a file to; the folder to move a folder into
  std::string COPYTO;               // the same for copying
  std::string EXTRACTTO;            // folder to extract into
  std::int16_t ACTION = static_cast<std::int16_t>(StepKind::kMove);  // the steps as bits
  std::int16_t SMARTRENAME = 1;  // 1 keep names, 2 always append the date, 3 append it on a collision
  std::int16_t EXTRACTTYPE = 2;  // 1 overwrite, 2 update
  bool SMARTMAKEDIR = false;     // no second folder level for an archive with a single root folder
  bool OPENDIR = false;          // open the extraction folder afterwards
  std::string INCLUDE;           // patterns separated by ";" of the archive's entries to take
  std::string EXCLUDE;           // and to leave
  std::string OPENFILE;          // names separated by ";" of what to open in EXTRACTTO afterwards
  // The folders from which MOVETO and COPYTO were computed by smart rename: a name that is taken meanwhile is chosen
  // anew. Empty: the path is meant as it stands.
  std::string MOVEINTO;
  std::string COPYINTO;

  // The path at CMDLINECURRENT, absolute.
  const std::string& CurrentCmdLineString() const;

  // Makes the current path the target. When it cannot be found (or a planned move has taken it away) the
  // answer says why, and there is no target.
  platform::Result SetTarget();

  // Reads the settings and profiles as they are now, for the current path. After a failure (RunSettings::Read) those
  // that were read before stay, and nothing must be done by them.
  platform::Result SetItemDataToArray();

  // As they were read last.
  const SettingsSnapshot& Settings() const { return *snapshot_; }

  // Matches the target's name against every profile; sets PATTERNMATCHCOUNT and ARCHIVETYPE. Element 0 is
  // empty, 1 is "（なし）", from 2 on come the titles of the profiles that match or, when none does, of all
  // profiles.
  std::vector<std::string> GetAccordantTitles();
  // The user stopped that before it was known whether the target is an archive: nothing must be done to it.
  bool IsTypeUnknown() const { return is_type_unknown_; }
  std::int32_t PATTERNMATCHCOUNT() const { return static_cast<std::int32_t>(matches_.size()); }
  // The titles of those that matched then.
  const std::vector<std::string>& Matches() const { return matches_; }

  // The profile's title as it is written in the store, without regard to the case of `title`.
  std::optional<std::string> FindTitle(const std::string& title) const;
  bool CheckDupTitle(const std::string& title) const { return FindTitle(title).has_value(); }

  // What is wrong with profiles: why one is never acted on, unless NoteTold says that it has been told; patterns that
  // cannot be used or whose matching went over the limit so far, and titles that stand more than once. With
  // `also_idle`, which keys do not count, too. One line each.
  std::vector<std::string> ProfileProblems(bool also_idle) const;

  // The user has been told that FillFromProfile refuses this profile, and why.
  void NoteTold(const std::string& title, const Reason& why) { told_[title] = why; }

  // Archiver libraries that could not be used so far, one line each.
  std::vector<std::string> LibraryProblems() const { return archiver_->LibraryProblems(); }

  // Do the files still say what was read of this profile, or, of an empty title, of the standard and test settings?
  bool SettingsHold(const std::string& title) const;

  // Fill the state of the current target: from a profile; from the test settings, for an archive that matches
  // none; from the standard settings, which leave SMARTMAKEDIR and OPENDIR as they are and compute no
  // destinations. The first two are false when there is no such profile or it must not be acted on: a value may have
  // been cut, was saved in another encoding, or is a folder with control characters in it. The answer is in `*why`.
  bool FillFromProfile(const std::string& title, Reason* why);
  bool FillFromTestSettings(Reason* why);
  void SetDefaultItemData();

  // The path that a folder chosen for one kind of step leads to: the folder itself for an extraction and for a folder
  // as target, else the file's path in it after smart rename.
  std::string GetTargetPathByFolder(StepKind kind, const std::string& folder) const;

  // `folder`/`name`, or by SMARTRENAME with the target's date: "/d", "a.txt" => "/d/a.txt",
  // "/d/a_20031107.txt",
  // "/d/a_20031107_1.txt". Only looks; the name can be gone by the time it is used.
  std::string GetFilenameBySmartRename(const std::string& folder, const std::string& name) const;

  // What ActionMain would do now, step by step; touches nothing. Copies and moves that would have to ask fail
  // when nobody answers.
  std::vector<ActionStep> PlanSteps(bool somebody_answers = false) {
    return WalkSteps(false, somebody_answers);
  }

  // Does it. True when the run succeeded: every step of ACTION was done, but that a failed copy before a move
  // that follows an extraction does not count.
  bool ActionMain();

  // What became of each step of the last ActionMain.
  const std::vector<ActionStep>& Steps() const { return steps_; }

  // From now on names count as taken and free as if the last planned steps had been done, so that a plan for
  // several paths is the one that a run would make.
  void AssumeDone(const std::vector<ActionStep>& steps);

 private:
  platform::Result ReadKind();
  std::int16_t DetectArchiveType();
  void ReadIndex();
  void FillFrom(const ProfileValues& profile);
  std::vector<ActionStep> WalkSteps(bool execute, bool somebody_answers);
  void CheckAction() const;
  ActionStep MakeStep(StepKind kind, bool execute) const;
  std::string FinalPath(StepKind kind) const;
  Reason KnownProblem(const ActionStep& step, bool execute) const;
  Reason PlaceProblem(const ActionStep& step, bool execute) const;
  const std::string* ChoosesNameIn(StepKind kind) const;
  void PlanOtherName(ActionStep* step, const std::vector<ActionStep>& earlier);
  bool WouldAsk(const ActionStep& step, const std::vector<ActionStep>& earlier) const;
  bool IsMoveToWhereItIs(const ActionStep& step) const;
  void PlanExtractStep(ActionStep* step, bool somebody_answers);
  bool RunStep(ActionStep* step);
  bool TransferStep(ActionStep* step);
  void HandOptionsToArchiver();
  bool ExtractStep();
  void OpenFiles();
  bool IsTarget(const platform::EntryStatus& entry) const;
  bool NameIsTaken(const std::string& path) const;
  bool IsAssumedGone(std::string path) const;

  Environment environment_;
  std::unique_ptr<clsArchiver> archiver_;
  bool is_type_unknown_ = false;
  clsFileOperation operation_;
  std::vector<std::string> CommandLineArgs;
  std::vector<ProfileIndexEntry> ProfileIndex;
  std::shared_ptr<const SettingsSnapshot> snapshot_;
  std::vector<std::string> matches_;
  std::vector<ActionStep> steps_;
  std::unordered_map<std::string, Reason> told_;  // why profiles are not acted on, by their titles
  // Both by the paths of WithRealFolder; the first with what is there now of the entry that will be there.
  std::unordered_map<std::string, std::string> assumed_taken_;
  std::unordered_set<std::string> assumed_free_;
};

}  // namespace quendle
