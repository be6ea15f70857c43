// What an extraction would do, found out without touching anything.
#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "archive/clsArchiver.h"
#include "archive/clsArchiver_work.h"
#include "platform/entries/entry_status.h"
#include "platform/entries/paths.h"

namespace quendle {
namespace {

// What is shorter is nowhere too long where another file can be made beside it.
constexpr std::size_t kShortPath = 1000;

Reason Described(const platform::Result& place) {
  return why::kAbout(place.reason, place.path);
}

}  // namespace

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
  auto is_free = work->is_free.cbegin();
  const auto begin = std::chrono::steady_clock::now();
  const auto has_time = [&] {
    return !somebody_answers || std::chrono::steady_clock::now() - begin < environment_.patience;
  };
  for (const ExtractionGroup& group : work->groups) {
    const platform::Result output = CheckOutputFolder(work->destination, group.sub_folder);
    if (!output.ok()) {
      work->report->problems.push_back({"", Described(output)});
      is_free += static_cast<std::ptrdiff_t>(group.names.size());
      continue;
    }
    std::optional<std::string_view> takes_new;  // the folder in which a file could be made last
    std::string folder;                         // of the last entry whose place is taken
    platform::Result links;                     // on the way to it
    for (const std::string& name : group.names) {
      const bool is_new = *is_free++;
      if (!has_time()) return false;
      if (name.ends_with('/')) continue;
      const std::string_view own = std::string_view(name).substr(0, name.rfind('/') + 1);
      if (is_new && own == takes_new && work->destination.size() + name.size() < kShortPath) continue;
      const std::string path = work->PathOf(name, group);
      const std::string place = OutputFolder(work->destination, path);
      if (is_new) {
        // Whoever found the place free went there without following links.
        takes_new = NoteObstacle(work, name, platform::CheckPlace(place)) ? std::optional(own) : std::nullopt;
        continue;
      }
      if (std::string way = path.substr(0, path.rfind('/') + 1); way != folder) {
        folder = std::move(way);
        links = platform::CheckNoLinks(work->destination, folder);
      }
      if (NoteObstacle(work, name, links)) FindObstacle(work, name, place, somebody_answers);
    }
  }
  return true;
}

// False when there is one.
bool clsArchiver::NoteObstacle(Work* work, const std::string& name, const platform::Result& obstacle) {
  if (!obstacle.ok()) work->report->problems.push_back({name, Described(obstacle)});
  return obstacle.ok();
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
  (void)NoteObstacle(work, name, obstacle);
}

Fate clsArchiver::FateOf(const Work& work, const std::string& name,
                         const platform::EntryStatus& existing) const {
  if (CONFIRMOVERWRITE) return Fate::kAsked;
  if (!Updates(work.row)) return Fate::kReplaced;
  const auto time = work.times.find(name);
  return FateByTime(time == work.times.end() ? 0 : time->second, existing);
}

}  // namespace quendle
