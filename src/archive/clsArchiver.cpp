#include "archive/clsArchiver.h"

#include <exception>
#include <string>
#include <unordered_set>
#include <utility>

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
  if (!library.Encode(platform::UpperCase(name))) return why::kNameNotEncodable;
  return {};
}

Reason Described(const platform::Result& place) {
  return why::kAbout(place.reason, place.path);
}

// Where an entry with a safe name goes below the destination, with "/" between the parts.
std::string PathOf(const std::string& name, const ExtractionGroup& group, bool flat) {
  std::string path;
  (void)platform::SafeEntryPath(name, platform::kHostNames, &path);
  if (!flat) return path;
  path.erase(0, path.rfind('/') + 1);
  return group.sub_folder.empty() ? path : group.sub_folder + "/" + path;
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

// An archive on its way from the list of its entries to the folders.
struct clsArchiver::Work {
  const ArchiverRow& row;
  const ArchiverLibrary& library;
  std::string destination;
  bool flat;
  ExtractionReport* report;
  ArchiveSession session;
  std::vector<std::string> names = {};
  std::vector<ExtractionGroup> groups = {};
  EntryTimes times = {};  // where they count
  ExistingFiles existing = {};

  // The full path that an entry of the group goes to.
  std::string PlaceOf(const std::string& name, const ExtractionGroup& group) const {
    return OutputFolder(destination, PathOf(name, group, flat));
  }
};

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

ExtractionReport clsArchiver::PlanExtraction(const std::string& destination, bool somebody_answers) {
  ExtractionReport report;
  // Each password that does not fit takes a while, and a window plans whenever something changes.
  report.asks_for_password = somebody_answers && locked_ == pFileName;
  if (report.asks_for_password) return report;
  const ArchiverRow& row = ArchiverRowOf(type_);
  Guarded(&report, [&] {
    const ArchiverLibrary* library = libraries_.Use(row);
    if (library == nullptr) return;
    Work work = Begin(row, *library, destination, &report, !somebody_answers);
    List(&work);
    if (!report.problems.empty() && work.session.LacksPassword()) {
      report = {};
      report.asks_for_password = true;
      locked_ = pFileName;
      return;
    }
    const bool is_listed = report.problems.empty();
    Choose(&work);
    const bool is_whole = FindObstacles(&work, somebody_answers);
    if (!is_listed) return;
    report.replaces = work.existing.Foretold();
    report.replaces->is_whole = is_whole;
  });
  return report;
}

// Looks where each file would go for what a run would stumble over. False when there was no time to look everywhere.
bool clsArchiver::FindObstacles(Work* work, bool somebody_answers) const {
  const auto begin = std::chrono::steady_clock::now();
  const auto has_time = [&] {
    return !somebody_answers || std::chrono::steady_clock::now() - begin < environment_.patience;
  };
  for (const ExtractionGroup& group : work->groups) {
    const platform::Result output = CheckOutputFolder(work->destination, group.sub_folder);
    if (!output.ok()) {
      work->report->problems.push_back({"", Described(output)});
      continue;
    }
    std::string folder;
    platform::Result links;
    for (const std::string& name : group.names) {
      if (!has_time()) return false;
      if (name.ends_with('/')) continue;
      const std::string path = PathOf(name, group, work->flat);
      if (std::string own = path.substr(0, path.rfind('/') + 1); own != folder) {
        folder = std::move(own);
        links = platform::CheckNoLinks(work->destination, folder);
      }
      if (links.ok()) {
        FindObstacle(work, name, OutputFolder(work->destination, path), somebody_answers);
      } else {
        work->report->problems.push_back({name, Described(links)});
      }
    }
  }
  return true;
}

void clsArchiver::FindObstacle(Work* work, const std::string& name, const std::string& path,
                               bool somebody_answers) const {
  platform::EntryStatus existing;
  const bool exists = platform::ReadStatus(path, &existing).ok();
  platform::Result obstacle;
  if (exists && existing.is_folder()) {
    obstacle = Failure(platform::Code::kExists, path, why::kFolderInWay);
  } else if (exists && CONFIRMOVERWRITE) {
    work->report->asks = true;
    if (!somebody_answers) obstacle = Failure(platform::Code::kExists, path, why::kExistsUnasked);
  } else {
    obstacle = platform::CheckPlace(path);
  }
  if (exists && !existing.is_folder()) work->existing.Note(path, existing, FateOf(*work, name, existing));
  if (!obstacle.ok()) work->report->problems.push_back({name, Described(obstacle)});
}

Fate clsArchiver::FateOf(const Work& work, const std::string& name,
                         const platform::EntryStatus& existing) const {
  if (CONFIRMOVERWRITE) return Fate::kAsked;
  if (!Updates(work.row)) return Fate::kReplaced;
  const auto time = work.times.find(name);
  return FateByTime(time == work.times.end() ? 0 : time->second, existing);
}

// What is there before a run, so that it can be told what the run has replaced. False when the user has stopped it.
bool clsArchiver::NoteExisting(Work* work) const {
  for (const ExtractionGroup& group : work->groups) {
    if (!FolderExists(OutputFolder(work->destination, group.sub_folder))) continue;
    for (const std::string& name : group.names) {
      if (!work->session.MayGoOn()) {
        work->report->problems.push_back({"", why::kStopped});
        return false;
      }
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
  work->groups = GroupEntries(std::move(work->names), work->flat);
  KeepWhatIsNeeded(work);
  std::unordered_set<std::string> seen;
  for (const ExtractionGroup& group : work->groups) {
    report.chosen += group.names.size();
    std::string folder = OutputFolder(work->destination, group.sub_folder);
    if (seen.insert(folder).second && !FolderExists(folder)) report.folders.push_back(std::move(folder));
  }
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
void clsArchiver::KeepWhatIsNeeded(Work* work) const {
  std::vector<std::string> archive_files = work->session.ReadFrom();
  archive_files.push_back(pFileName);
  ExtractionGuard guard(work->destination, archive_files, environment_.protected_files);
  for (ExtractionGroup& group : work->groups) {
    std::erase_if(group.names, [&](const std::string& name) {
      if (work->flat && name.ends_with('/')) return false;  // it is not made
      Reason problem = guard.Problem(PathOf(name, group, work->flat));
      if (problem.empty()) return false;
      work->report->problems.push_back({name, std::move(problem)});
      return true;
    });
  }
  std::erase_if(work->groups, [](const ExtractionGroup& group) { return group.names.empty(); });
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
