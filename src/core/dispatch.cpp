#include "core/dispatch.h"

#include "core/profile_choice.h"

namespace quendle {
namespace {

std::string JoinTitles(const std::vector<std::string>& titles) {
  std::string joined;
  for (const std::string& title : titles) joined += (joined.empty() ? "" : ", ") + title;
  return joined;
}

// Fills the dispatcher's state from the one profile that is to act. False, with the report's outcome and
// error set, when there is none or it cannot be used.
bool FillByChoice(clsMover* mover, const DispatchOptions& options, DispatchReport* report) {
  const ProfileChoice choice = ChooseProfile(*mover, options.profile);
  switch (choice.kind) {
    case ProfileChoice::Kind::kAmbiguous:
      report->outcome = Outcome::kAmbiguous;
      report->error = why::kSeveralMatch(report->matches.size(), JoinTitles(report->matches));
      return false;
    case ProfileChoice::Kind::kNone:
      report->outcome = Outcome::kUnmatched;
      report->error = why::kNoneMatches;
      return false;
    case ProfileChoice::Kind::kTestSettings:
      break;
    case ProfileChoice::Kind::kProfile:
      report->profile = choice.title;
      break;
  }
  if (FillFromChoice(choice, mover, &report->error)) return true;
  if (report->profile) {
    mover->NoteTold(*report->profile, report->error);
    report->error = why::kInProfile(*report->profile, report->error);
  }
  return false;
}

}  // namespace

DispatchReport DispatchCurrent(clsMover* mover, const clsFileInfo& file_info,
                               const DispatchOptions& options) {
  DispatchReport report;
  const platform::Result found = mover->SetTarget();
  report.path = mover->ORIGINALPATH;
  report.name = file_info.pFileNameLong();
  if (!found.ok()) {
    const bool is_missing =
        found.code == platform::Code::kNotFound || found.code == platform::Code::kNotFolder;
    report.outcome = is_missing ? Outcome::kMissing : Outcome::kFailed;
    report.error = found.reason;
    return report;
  }
  if (report.name.empty()) {
    report.error = why::kNotInFolder;
    return report;
  }
  if (const platform::Result read = mover->SetItemDataToArray(); !read.ok()) {
    report.error = why::kSettingsUnreadable(why::kAbout(read.path, read.reason));
    return report;
  }
  mover->GetAccordantTitles();
  if (mover->IsTypeUnknown()) {
    report.error = why::kInterrupted;
    return report;
  }
  report.archive_type = mover->ARCHIVETYPE;
  report.matches = mover->Matches();
  if (!FillByChoice(mover, options, &report)) return report;

  if (options.dry_run) {
    report.steps = mover->PlanSteps();
    mover->AssumeDone(report.steps);
  } else {
    mover->ActionMain();
    report.steps = mover->Steps();  // each of them counts here, also the copy that ActionMain may overlook
  }
  report.outcome = options.dry_run ? Outcome::kPlanned : Outcome::kDone;
  for (const ActionStep& step : report.steps) {
    if (step.result == StepResult::kFailed || step.result == StepResult::kSkipped) {
      report.outcome = Outcome::kFailed;
      if (report.error.empty()) report.error = step.error;
    }
  }
  return report;
}

}  // namespace quendle
