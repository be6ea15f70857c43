// Planning and doing the steps of an action.
#include <utility>

#include "base/modString.h"
#include "base/modSystem.h"
#include "core/clsMover.h"

namespace quendle {
namespace {

// Extraction first; the move last, since the file is gone from its place after it.
constexpr StepKind kStepOrder[] = {StepKind::kExtract, StepKind::kCopy, StepKind::kMove};

bool Includes(std::int16_t action, StepKind kind) {
  return (action & static_cast<std::int16_t>(kind)) != 0;
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
  steps_ = WalkSteps(Walk::kRun);
  for (const ActionStep& step : steps_) {
    const bool may_fail = ACTION == 7 && step.kind == StepKind::kCopy;
    if (step.result != StepResult::kDone && !may_fail) return false;
  }
  return true;
}

std::vector<ActionStep> clsMover::PlanSteps(bool can_be_asked) {
  return WalkSteps(can_be_asked ? Walk::kPlan : Walk::kPlanUnattended);
}

// Plan and run are one walk, so that they cannot differ.
std::vector<ActionStep> clsMover::WalkSteps(Walk walk) {
  if (ACTION < 0 || ACTION > 7) ProgrammingError("action code outside 0 to 7");
  std::vector<ActionStep> steps;
  bool stopped = false;
  for (const StepKind kind : kStepOrder) {
    if (!Includes(ACTION, kind)) continue;
    ActionStep step = MakeStep(kind);
    for (const ActionStep& earlier : steps) step.collides |= !DOESFOLDER && earlier.to == step.to;
    if (stopped) {
      step.result = StepResult::kSkipped;
      step.error = "not tried, because the step before it failed";
    } else if (step.result == StepResult::kPlanned) {
      TakeStep(walk, &step);
    }
    stopped |= step.result == StepResult::kFailed && !(ACTION == 7 && kind == StepKind::kCopy);
    steps.push_back(std::move(step));
  }
  return steps;
}

void clsMover::TakeStep(Walk walk, ActionStep* step) {
  if (walk == Walk::kRun) {
    step->result = RunStep(step) ? StepResult::kDone : StepResult::kFailed;
  } else if (walk == Walk::kPlanUnattended && step->collides) {
    step->result = StepResult::kFailed;
    step->error = "something of that name exists already, and nothing is overwritten unasked";
  }
}

ActionStep clsMover::MakeStep(StepKind kind) const {
  ActionStep step{kind, FinalPath(kind), StepResult::kPlanned, "", false};
  if (IsMoveIntoOwnFolder(kind)) {
    step.result = StepResult::kSkipped;
    step.error = "it is in that folder already";
    return step;
  }
  step.error = KnownProblem(step);
  if (!step.error.empty()) step.result = StepResult::kFailed;
  step.collides = kind != StepKind::kExtract && NameIsTaken(step.to);
  return step;
}

std::string clsMover::FinalPath(StepKind kind) const {
  if (kind == StepKind::kExtract) return EXTRACTTO;
  const std::string& to = kind == StepKind::kMove ? MOVETO : COPYTO;
  if (!DOESFOLDER || to.empty()) return to;
  return AddBackslash(to) + environment_.file_info.pFileNameLong();
}

bool clsMover::IsMoveIntoOwnFolder(StepKind kind) const {
  return kind == StepKind::kMove && Includes(ACTION, StepKind::kExtract) &&
         RemoveBackslash(MOVETO) == environment_.file_info.pFolderPathLong();
}

std::string clsMover::KnownProblem(const ActionStep& step) const {
  if (step.kind == StepKind::kExtract && ARCHIVETYPE == 0) return "not an archive that can be extracted";
  if (step.to.empty()) return "no destination folder is set";
  if (!IsAbsolutePath(step.to)) return "the destination folder is not an absolute path";
  if (step.kind == StepKind::kExtract) return "";
  if (step.kind == StepKind::kMove && EqualsIgnoringCase(ORIGINALPATH, MOVETO)) return "it is there already";
  if (!DOESFOLDER && FolderExists(step.to)) return "a folder of that name is in the way";
  if (DOESFOLDER && step.to.starts_with(AddBackslash(ORIGINALPATH))) return "a folder cannot go into itself";
  return "";
}

bool clsMover::RunStep(ActionStep* step) {
  bool done = false;
  switch (step->kind) {
    case StepKind::kExtract:
      done = ExtractStep();
      if (!done) step->error = "the archive could not be extracted completely";
      return done;
    case StepKind::kCopy:
      done = CopyStep();
      break;
    case StepKind::kMove:
      done = MoveStep();
      break;
  }
  if (!done) {
    const platform::Result& failure = operation_.LastFailure();
    step->error = failure.reason;
    if (!failure.path.empty() && failure.path != step->to) step->error += ": " + failure.path;
  }
  return done;
}

bool clsMover::MoveStep() {
  if (EqualsIgnoringCase(ORIGINALPATH, MOVETO)) return false;
  return operation_.mMove(ORIGINALPATH, DOESFOLDER ? AddBackslash(MOVETO) : MOVETO);
}

// A folder goes below its destination also when that does not exist yet: the separator says so.
bool clsMover::CopyStep() {
  return operation_.mCopy(ORIGINALPATH, DOESFOLDER ? AddBackslash(COPYTO) : COPYTO);
}

bool clsMover::ExtractStep() {
  if (ARCHIVETYPE == 0) return false;
  archiver_->pFileName = ORIGINALPATH;
  if (!archiver_->mExtractArchive(EXTRACTTO)) return false;
  if (OPENDIR) environment_.user.OpenFolder(EXTRACTTO);
  OpenFiles();
  return true;
}

// Opening is a service on top: what cannot be opened does not make the extraction a failure.
void clsMover::OpenFiles() {
  const std::string names = environment_.items.OPENFILE() + ";";
  for (std::size_t begin = 0, end; (end = names.find(';', begin)) != std::string::npos; begin = end + 1) {
    const std::string name = TrimBlanks(names.substr(begin, end - begin));
    if (name.empty()) continue;
    environment_.user.OpenFile(AddBackslash(EXTRACTTO) + name, EXTRACTTO);
  }
}

}  // namespace quendle
