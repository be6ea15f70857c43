// Planning and doing the steps of an action.
#include <utility>

#include "base/modString.h"
#include "base/modSystem.h"
#include "core/clsMover.h"
#include "files/file_manager.h"
#include "platform/entries/entry_status.h"
#include "platform/entries/paths.h"
#include "platform/moving/merge.h"
#include "resources/string_table.h"

namespace quendle {
namespace {

// Extraction first; the move last, since the file is gone from its place after it.
constexpr StepKind kStepOrder[] = {StepKind::kExtract, StepKind::kCopy, StepKind::kMove};

Reason Described(const platform::Result& place) {
  return place.ok() ? Reason() : why::kAbout(place.reason, place.path);
}

class BusyScope {
 public:
  explicit BusyScope(UserInterface& user) : user_(user) { user_.SetBusy(true); }
  ~BusyScope() { user_.SetBusy(false); }
  BusyScope(const BusyScope&) = delete;
  BusyScope& operator=(const BusyScope&) = delete;

 private:
  UserInterface& user_;
};

}  // namespace

bool clsMover::ActionMain() {
  const BusyScope busy(environment_.user);
  steps_ = WalkSteps(true, true);
  for (const ActionStep& step : steps_) {
    const bool may_fail = ACTION == kAllSteps && step.kind == StepKind::kCopy;
    if (step.result != StepResult::kDone && !may_fail) return false;
  }
  return true;
}

// Plan and run walk the same way: only here do they part.
std::vector<ActionStep> clsMover::WalkSteps(bool execute, bool somebody_answers) {
  CheckAction();
  std::vector<ActionStep> steps;
  bool stopped = false;
  bool stopped_by_user = false;
  for (const StepKind kind : kStepOrder) {
    if (!Includes(ACTION, kind)) continue;
    ActionStep step = MakeStep(kind, execute);
    if (!execute) PlanOtherName(&step, steps);
    if (stopped) {
      step.result = StepResult::kSkipped;
      step.error = why::kNotTried;
      step.by_user = stopped_by_user;
    } else if (step.result == StepResult::kPlanned && execute) {
      step.result = RunStep(&step) ? StepResult::kDone : StepResult::kFailed;
    } else if (step.result == StepResult::kPlanned && kind == StepKind::kExtract) {
      PlanExtractStep(&step, somebody_answers);
    } else if (step.result == StepResult::kPlanned && WouldAsk(step, steps)) {
      step.asks = somebody_answers;
      if (!step.asks) {
        step.result = StepResult::kFailed;
        step.error = DOESFOLDER ? why::kFilesExistUnasked : why::kFileExistsUnasked;
      }
    }
    if (step.result == StepResult::kFailed && !(ACTION == kAllSteps && kind == StepKind::kCopy)) {
      stopped = true;
      stopped_by_user = step.by_user;
    }
    steps.push_back(std::move(step));
  }
  return steps;
}

ActionStep clsMover::MakeStep(StepKind kind, bool execute) const {
  ActionStep step{kind, FinalPath(kind), StepResult::kPlanned, {}};
  if (IsMoveToWhereItIs(step)) {
    step.result = StepResult::kSkipped;
    step.error = why::kInThatFolder;
    return step;
  }
  step.error = KnownProblem(step, execute);
  if (!step.error.empty()) step.result = StepResult::kFailed;
  return step;
}

std::string clsMover::FinalPath(StepKind kind) const {
  if (kind == StepKind::kExtract) return EXTRACTTO;
  const std::string& to = kind == StepKind::kMove ? MOVETO : COPYTO;
  if (!DOESFOLDER || to.empty()) return to;
  return AddBackslash(to) + environment_.file_info.pFileNameLong();
}

// After an extraction a move into the target's own folder has nothing to do; another name in it is a move like any.
bool clsMover::IsMoveToWhereItIs(const ActionStep& step) const {
  return step.kind == StepKind::kMove && Includes(ACTION, StepKind::kExtract) && IsRootedPath(step.to) &&
         platform::WithRealFolder(step.to) == platform::WithRealFolder(ORIGINALPATH);
}

Reason clsMover::KnownProblem(const ActionStep& step, bool execute) const {
  if (step.kind == StepKind::kExtract && ARCHIVETYPE == 0) {
    archiver_->pFileName = ORIGINALPATH;
    return archiver_->WhyNoType();
  }
  if (step.to.empty()) return why::kNoDestination;
  if (!IsRootedPath(step.to)) return why::kDestinationNotAbsolute;
  // Through links it would not lead where it seems to, and folders that are made on the way would stay.
  if (HasParentComponent(step.to)) return why::kDestinationGoesUp;
  if (step.kind != StepKind::kExtract) return PlaceProblem(step, execute);
  return FolderExists(step.to) ? Reason() : Described(platform::CheckPlace(step.to));
}

// What only the rights of folders tell, an operation that is done finds out by itself.
Reason clsMover::PlaceProblem(const ActionStep& step, bool execute) const {
  if (DOESFOLDER) {
    const std::string own = AddBackslash(platform::WithRealFolder(ORIGINALPATH));
    const std::string into = SplitPath(platform::WithRealFolder(step.to)).folder;
    if (AddBackslash(into).starts_with(own)) return why::kIntoItself;
  }
  if (platform::EntryStatus there; platform::ReadStatus(step.to, &there).ok()) {
    if (step.kind == StepKind::kMove && IsTarget(there)) return why::kThereAlready;
    const bool is_folder = there.is_folder() || (there.is_link() && FolderExists(step.to));
    if (!DOESFOLDER && is_folder) return why::kFolderInWay;
    if (DOESFOLDER && !is_folder) return why::kFileInWay;
  }
  if (execute) return {};
  platform::Result place = platform::CheckPlace(step.to);
  if (place.ok() && step.kind == StepKind::kMove) place = platform::CheckPlace(ORIGINALPATH);
  return Described(place);
}

// The folder in which smart rename chooses the name, and another one when that is taken; null where the name is given.
const std::string* clsMover::ChoosesNameIn(StepKind kind) const {
  const std::string& folder = kind == StepKind::kMove ? MOVEINTO : COPYINTO;
  return SMARTRENAME == 1 || DOESFOLDER || folder.empty() ? nullptr : &folder;
}

// The name may be free only until the step before has taken it.
void clsMover::PlanOtherName(ActionStep* step, const std::vector<ActionStep>& earlier) {
  if (earlier.empty() || step->result != StepResult::kPlanned) return;
  const ActionStep& before = earlier.back();
  const std::string* folder = ChoosesNameIn(step->kind);
  const bool is_taken =
      before.kind == StepKind::kCopy && before.result == StepResult::kPlanned && before.to == step->to;
  if (!is_taken || folder == nullptr) return;
  const auto place = assumed_taken_.emplace(platform::WithRealFolder(step->to), ORIGINALPATH).first;
  step->to = GetTargetPathByFolder(step->kind, *folder);
  assumed_taken_.erase(place);
}

// Would the user be asked whether to overwrite, after the steps that come before?
bool clsMover::WouldAsk(const ActionStep& step, const std::vector<ActionStep>& earlier) const {
  for (const ActionStep& done : earlier) {
    if (done.to == step.to) return true;
  }
  if (!DOESFOLDER) return NameIsTaken(step.to);
  const auto assumed = assumed_taken_.find(platform::WithRealFolder(step.to));
  return platform::FoldersCollide(ORIGINALPATH, assumed == assumed_taken_.end() ? step.to : assumed->second);
}

bool clsMover::RunStep(ActionStep* step) {
  if (step->kind == StepKind::kExtract) {
    const bool done = ExtractStep();
    step->extraction = archiver_->LastReport();
    if (!done) step->error = DescribeProblems(step->extraction->problems);
    step->by_user = step->extraction->by_user;
    return done;
  }
  if (TransferStep(step)) return true;
  const platform::Result& failure = operation_.LastFailure();
  step->error = failure.reason;
  step->by_user = operation_.FailedByUser();
  const bool is_elsewhere = failure.path != step->to && failure.path != ORIGINALPATH;
  if (is_elsewhere && !failure.path.empty()) step->error = why::kAbout(failure.reason, failure.path);
  return false;
}

// A name that smart rename has found free may be taken by the time the file comes; then the next one is found.
bool clsMover::TransferStep(ActionStep* step) {
  constexpr int kMostTries = 100;
  const auto operate = step->kind == StepKind::kMove ? &clsFileOperation::mMove : &clsFileOperation::mCopy;
  const std::string* folder = ChoosesNameIn(step->kind);
  operation_.pFailIfTaken(folder != nullptr);
  for (int tries = 1;; ++tries) {
    if ((operation_.*operate)(ORIGINALPATH, step->to)) return true;
    const bool is_taken =
        operation_.pFailIfTaken() && operation_.LastFailure().code == platform::Code::kExists;
    if (!is_taken || tries == kMostTries) return false;
    std::string next = GetTargetPathByFolder(step->kind, *folder);
    if (next == step->to && FolderExists(next)) return false;  // which no file replaces
    if (next == step->to)
      operation_.pFailIfTaken(false);  // it is taken by what belongs there: the user is asked
    step->to = std::move(next);
  }
}

void clsMover::HandOptionsToArchiver() {
  archiver_->pFileName = ORIGINALPATH;
  archiver_->SMARTMAKEDIR = SMARTMAKEDIR;
  archiver_->EXTRACTTYPE = EXTRACTTYPE;
  archiver_->INCLUDE = INCLUDE;
  archiver_->EXCLUDE = EXCLUDE;
  archiver_->CONFIRMOVERWRITE = snapshot_->Standard().Flag(TextId::kConfirmOverwrite);
  archiver_->ARCHIVECHARSET = snapshot_->Standard().Text(TextId::kArchiveCharset);
}

void clsMover::PlanExtractStep(ActionStep* step, bool somebody_answers) {
  HandOptionsToArchiver();
  step->extraction = archiver_->PlanExtraction(EXTRACTTO, somebody_answers);
  step->asks = somebody_answers && step->extraction->asks;
  step->error = DescribeProblems(step->extraction->problems);
  if (!step->error.empty()) step->result = StepResult::kFailed;
}

bool clsMover::ExtractStep() {
  HandOptionsToArchiver();
  const bool extracted = archiver_->mExtractArchive(EXTRACTTO);
  SMARTMAKEDIR = archiver_->SMARTMAKEDIR;  // cleared where there is no folder level to save
  if (!extracted) return false;
  if (OPENDIR) environment_.user.ShowInFileManager(EXTRACTTO, FileManagerOf(snapshot_->Standard()));
  OpenFiles();
  return true;
}

// Opening is a service on top: what cannot be opened does not make the extraction a failure.
void clsMover::OpenFiles() {
  const std::string names = OPENFILE + ";";
  for (std::size_t begin = 0, end; (end = names.find(';', begin)) != std::string::npos; begin = end + 1) {
    const std::string name = TrimBlanks(names.substr(begin, end - begin));
    if (name.empty()) continue;
    environment_.user.OpenFile(AddBackslash(EXTRACTTO) + name, EXTRACTTO);
  }
}

}  // namespace quendle
