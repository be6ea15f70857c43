#include "core/dispatch.h"

#include "resources/string_table.h"

namespace quendle {
namespace {

std::string JoinTitles(const std::vector<std::string>& titles) {
  std::string joined;
  for (const std::string& title : titles) joined += (joined.empty() ? "" : ", ") + title;
  return joined;
}

// Fills the dispatcher's state from the one profile that is to act. False, with the report's outcome and
// error set, when there is none or it cannot be used.
bool ChooseProfile(clsMover* mover, const DispatchOptions& options, DispatchReport* report) {
  if (options.profile) {
    report->profile = *options.profile;
  } else if (report->matches.size() == 1) {
    report->profile = report->matches.front();
  } else if (report->matches.size() > 1) {
    report->outcome = Outcome::kAmbiguous;
    report->error = why::kSeveralMatch(report->matches.size(), JoinTitles(report->matches));
    return false;
  } else if (mover->ARCHIVETYPE != 0 && mover->Settings().Standard().Flag(TextId::kTest)) {
    return mover->FillFromTestSettings(&report->error);
  } else {
    report->outcome = Outcome::kUnmatched;
    report->error = why::kNoneMatches;
    return false;
  }
  if (mover->FillFromProfile(*report->profile, &report->error)) return true;
  report->error = why::kInProfile(*report->profile, report->error);
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
  const std::vector<std::string> titles = mover->GetAccordantTitles();
  report.archive_type = mover->ARCHIVETYPE;
  if (mover->PATTERNMATCHCOUNT() > 0) report.matches.assign(titles.begin() + 2, titles.end());
  if (!ChooseProfile(mover, options, &report)) return report;

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
