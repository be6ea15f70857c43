#include "archive/existing_files.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <string>
#include <utility>

#include "platform/process/local_time.h"
#include "platform/text/unicode.h"

namespace quendle {
namespace {

// The earliest and the latest second that the time of a record may stand for. No time: the first is after the second.
struct Span {
  std::int64_t first = std::numeric_limits<std::int64_t>::max();
  std::int64_t last = std::numeric_limits<std::int64_t>::min();
};

Span SecondsOf(std::uint32_t entry_time) {
  using namespace std::chrono;
  const auto bits = [entry_time](unsigned first, unsigned count) {
    return (entry_time >> first) & ((1U << count) - 1);
  };
  Span span;
  const year_month_day date(year(static_cast<int>(bits(25, 7)) + 1980), month(bits(21, 4)), day(bits(16, 5)));
  if (!date.ok()) return span;
  const auto shown = sys_days(date) + hours(bits(11, 5)) + minutes(bits(5, 6)) + seconds(2 * bits(0, 5));
  const std::int64_t clock = shown.time_since_epoch().count();
  constexpr std::int64_t kDay = 86'400;
  // The clock's distance from UTC is one of the day before and the day behind.
  for (const std::int64_t near : {clock - kDay, clock + kDay}) {
    const std::int64_t time = clock - (platform::SecondsOfLocalClock(near) - near);
    if (platform::SecondsOfLocalClock(time) != clock) continue;
    span.first = std::min(span.first, time);
    span.last = std::max(span.last, time + 1);
  }
  return span;
}

}  // namespace

Fate FateByTime(std::uint32_t entry_time, const platform::EntryStatus& existing) {
  const Span entry = SecondsOf(entry_time);
  const std::int64_t there = existing.write_time.seconds;
  if (entry.first > entry.last) return Fate::kUnsure;
  if (entry.first > there) return Fate::kReplaced;
  return entry.last <= there ? Fate::kKept : Fate::kUnsure;
}

void ExistingFiles::Note(const std::string& path, const platform::EntryStatus& existing, Fate fate) {
  // Names that differ in case alone are of one file, or, where case counts, of two.
  std::string key = platform::UpperCase(path) + "/" + std::to_string(existing.id.high) + "/" +
                    std::to_string(existing.id.low);
  const auto [place, is_new] = places_.emplace(std::move(key), files_.size());
  if (is_new) {
    files_.push_back({path, existing, fate});
  } else {
    File& file = files_[place->second];
    file.fate = std::max(file.fate, fate);
  }
}

void ExistingFiles::Name(const File& file, Replacements* replacements) {
  if (replacements->files.size() < Replacements::kMostNamed) replacements->files.push_back(file.path);
}

Replacements ExistingFiles::Foretold() const {
  Replacements foretold;
  for (const File& file : files_) {
    if (file.fate == Fate::kKept) continue;
    ++(file.fate == Fate::kReplaced ? foretold.sure
       : file.fate == Fate::kAsked  ? foretold.asked
                                    : foretold.unsure);
    Name(file, &foretold);
  }
  return foretold;
}

Replacements ExistingFiles::Found() const {
  Replacements found;
  for (const File& file : files_) {
    platform::EntryStatus now;
    if (!platform::ReadStatus(file.path, &now).ok()) continue;
    // What is known of a file changes, too, when another name of it comes or goes.
    const bool is_touched = file.status.change_time != now.change_time && file.status.links == now.links;
    if (IsSameContent(file.status, now) && !is_touched) continue;
    ++found.sure;
    Name(file, &found);
  }
  return found;
}

}  // namespace quendle
