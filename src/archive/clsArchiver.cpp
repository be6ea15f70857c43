#include "archive/clsArchiver.h"

#include <exception>
#include <string>
#include <unordered_set>
#include <utility>

#include "archive/clsArchiver_work.h"
#include "archive/extraction_guard.h"
#include "archive/extraction_run.h"
#include "base/modString.h"
#include "base/modSystem.h"
#include "platform/entries/entry_path.h"
#include "platform/entries/entry_status.h"
#include "platform/entries/paths.h"
#include "platform/text/unicode.h"

namespace quendle {
namespace {

constexpr const char* kFaultMessage =
    "エラーが発生しましたが処理を継続します。\r\nエラー発生時の状況を製作者へお知らせください。";

// Why the entry cannot be asked for; empty when it can.
Reason NameProblem(const std::string& name, const ArchiverLibrary& library) {
  std::string safe;
  const platform::Result result = platform::SafeEntryPath(name, platform::kHostNames, &safe);
  if (!result.ok()) return result.reason;
  // A list of names has one in a line, in quotes.
  if (name.find_first_of("\r\n") != std::string::npos || name.front() == '"' || name.back() == '"') {
    return why::kNameNotTellable;
  }
  if (!library.TakesAllText() && !library.Encode(platform::UpperCase(name))) return why::kNameNotEncodable;
  return {};
}

}  // namespace

Reason DescribeProblems(const std::vector<ExtractionProblem>& problems) {
  if (problems.empty()) return {};
  const auto& [entry, reason] = problems.front();
  const Reason first = entry.empty() ? reason : why::kAbout(entry, reason);
  return problems.size() == 1 ? first : why::kMore(first, problems.size() - 1);
}

const char* ArchiveTypeName(std::int16_t type) {
  return type == 0 ? "" : ArchiverRowOf(type).name;
}

clsArchiver::clsArchiver(Environment environment)
    : environment_(std::move(environment)),
      libraries_(environment_.module_folder),
      passwords_(environment_.passwords) {
  std::vector<std::string>& files = environment_.protected_files;
  for (std::string& place : ArchiverLibraries::PlacesOfUsers()) files.push_back(std::move(place));
}

bool clsArchiver::mExtractArchive(const std::string& destination) {
  report_ = {};
  locked_.clear();
  const ArchiverRow& row = ArchiverRowOf(type_);
  bool succeeded = false;
  Guarded(&report_, [&] {
    const ArchiverLibrary* library = libraries_.Use(row);
    if (library == nullptr) {
      report_.problems.push_back({"", why::kLibraryLost});
      return;
    }
    Work work = Begin(row, *library, destination, &report_, true);
    Guarded(&report_, [&] { List(&work); });
    Guarded(&report_, [&] { Choose(&work); });
    SMARTMAKEDIR = work.flat;
    succeeded = work.groups.empty() || (NoteExisting(&work) && Run(&work));
    report_.replaces = work.existing.Found();
    RememberPassword(work);
    report_.by_user = work.session.IsCancelled() && report_.problems.size() == 1;
  });
  return succeeded && report_.problems.empty();
}

// What is there before a run, so that it can be told what the run has replaced. False when the user has stopped it.
bool clsArchiver::NoteExisting(Work* work) const {
  auto is_free = work->is_free.cbegin();
  for (const ExtractionGroup& group : work->groups) {
    for (const std::string& name : group.names) {
      if (!work->session.MayGoOn()) {
        work->report->problems.push_back({"", why::kStopped});
        return false;
      }
      if (*is_free++) continue;
      const std::string path = work->PlaceOf(name, group);
      platform::EntryStatus existing;
      if (platform::ReadStatus(path, &existing).ok() && !existing.is_folder())
        work->existing.Note(path, existing, Fate::kReplaced);
    }
  }
  return true;
}

clsArchiver::Work clsArchiver::Begin(const ArchiverRow& row, const ArchiverLibrary& library,
                                     const std::string& destination, ExtractionReport* report,
                                     bool asks_for_password) const {
  return Work{row,
              library,
              destination,
              SMARTMAKEDIR,
              report,
              {library,
               environment_.user,
               pFileName,
               {ARCHIVECHARSET, passwords_, environment_.protected_files, asks_for_password},
               &report->problems}};
}

// One that fitted may fit the next archive, too.
void clsArchiver::RememberPassword(const Work& work) {
  if (work.report->problems.empty()) PutFirst(&passwords_, work.session.Password());
}

void clsArchiver::List(Work* work) {
  work->session.BeginCall();
  work->names = work->library.EntryNames(pFileName, Updates(work->row) ? &work->times : nullptr);
  const std::size_t nameless = std::erase(work->names, "");
  if (nameless > 0) {
    work->report->problems.push_back({"", why::kNamelessEntries(nameless)});
  }
  work->session.RethrowFault();
  RememberPassword(*work);
}

void clsArchiver::Choose(Work* work) const {
  ExtractionReport& report = *work->report;
  report.all = work->names.size();
  work->flat = work->flat && HaveOneTopFolder(work->names);
  report.doubled_folder_avoided = work->flat;
  const EntryFilter filter(INCLUDE, EXCLUDE);
  Reason problem = filter.Problem();
  std::erase_if(work->names, [&](const std::string& name) {
    const bool passes = problem.empty() && filter.Passes(name);
    if (problem.empty()) problem = filter.Problem();
    return !passes;
  });
  if (!problem.empty()) {
    report.problems.push_back({"", std::move(problem)});
    work->names.clear();  // what the others would let through may be what this one was to keep back
  }
  Refuse(work);
  std::vector<ExtractionGroup> groups = GroupEntries(std::move(work->names), work->flat);
  KeepWhatIsNeeded(work, &groups);
  std::unordered_set<std::string> seen;
  for (const ExtractionGroup& group : groups) {
    report.chosen += group.names.size();
    std::string folder = OutputFolder(work->destination, group.sub_folder);
    if (seen.insert(folder).second && !FolderExists(folder)) report.folders.push_back(std::move(folder));
  }
  work->groups = std::move(groups);  // none after a fault: nobody would know which are free
}

// The rest is extracted; what is refused makes the whole a failure.
void clsArchiver::Refuse(Work* work) const {
  std::vector<ExtractionProblem>& problems = work->report->problems;
  const platform::Result archive = CheckNameable(pFileName);
  if (!archive.ok()) {
    problems.push_back({"", archive.reason});
    work->names.clear();
  }
  std::erase_if(work->names, [&](const std::string& name) {
    Reason problem = NameProblem(name, work->library);
    if (problem.empty()) return false;
    problems.push_back({name, std::move(problem)});
    return true;
  });
}

// The libraries that come with the program see to it themselves at the moment of writing; others may not know that they
// should.
void clsArchiver::KeepWhatIsNeeded(Work* work, std::vector<ExtractionGroup>* groups) const {
  std::vector<std::string> archive_files = work->session.ReadFrom();
  archive_files.push_back(pFileName);
  ExtractionGuard guard(work->destination, archive_files, environment_.protected_files);
  for (ExtractionGroup& group : *groups) {
    std::erase_if(group.names, [&](const std::string& name) {
      const bool is_left_out = work->flat && name.ends_with('/');  // it is not made
      bool is_free = true;
      Reason problem = is_left_out ? Reason() : guard.Problem(work->PathOf(name, group), &is_free);
      if (problem.empty()) {
        work->is_free.push_back(is_free);
        return false;
      }
      work->report->problems.push_back({name, std::move(problem)});
      return true;
    });
  }
  std::erase_if(*groups, [](const ExtractionGroup& group) { return group.names.empty(); });
}

bool clsArchiver::Run(Work* work) {
  const CommandOptions options{work->flat, CONFIRMOVERWRITE, EXTRACTTYPE};
  ExtractionRun run({work->row, work->library, work->session, environment_.output(), options, pFileName,
                     work->destination, work->report->problems,
                     [this](const std::function<void()>& step) { Guarded(&report_, step); }});
  return run.Extract(work->groups);
}

// A fault in one step does not keep the others from being done; it is a problem, and so never a success.
void clsArchiver::Guarded(ExtractionReport* report, const std::function<void()>& step) {
  try {
    step();
  } catch (const std::exception& fault) {
    report->problems.push_back({"", why::kFault(fault.what())});
    environment_.user.ShowMessage(UserInterface::MessageKind::kCritical, kFaultMessage);
  }
}

}  // namespace quendle
