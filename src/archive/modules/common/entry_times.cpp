#include "archive/modules/common/entry_times.h"

#include <chrono>
#include <ctime>

#include "platform/process/local_time.h"

namespace quendle::modules {
namespace {

// The time at which the local clock shows `parts`. mktime looks for changes of the time zone on the disk each time, and so
// is only asked when the clock is put forward or back about then.
std::optional<std::int64_t> TimeOfLocalClock(std::tm parts) {
  using namespace std::chrono;
  constexpr std::int64_t kDay = 86'400;
  const sys_days month = year(parts.tm_year + 1900) / (parts.tm_mon + 1) / 1;
  const auto shown =
      month + days(parts.tm_mday - 1) + hours(parts.tm_hour) + minutes(parts.tm_min) + seconds(parts.tm_sec);
  const std::int64_t clock = shown.time_since_epoch().count();
  const std::int64_t ahead = platform::SecondsOfLocalClock(clock - kDay) - (clock - kDay);
  if (platform::SecondsOfLocalClock(clock + kDay) - (clock + kDay) == ahead) return clock - ahead;
  const std::time_t time = std::mktime(&parts);
  return time == std::time_t{-1} ? std::nullopt : std::optional<std::int64_t>(time);
}

}  // namespace

std::optional<platform::EntryTime> TimeFromDos(std::uint32_t date_and_time) {
  const auto bits = [date_and_time](int first, int count) {
    return static_cast<int>((date_and_time >> first) & ((1U << count) - 1));
  };
  std::tm parts{};
  parts.tm_year = bits(25, 7) + 80;
  parts.tm_mon = bits(21, 4) - 1;
  parts.tm_mday = bits(16, 5);
  parts.tm_hour = bits(11, 5);
  parts.tm_min = bits(5, 6);
  parts.tm_sec = bits(0, 5) * 2;
  parts.tm_isdst = -1;
  if (parts.tm_mon < 0 || parts.tm_mon > 11 || parts.tm_mday < 1) return std::nullopt;
  const auto time = TimeOfLocalClock(parts);
  return time ? std::optional(platform::EntryTime{*time, 0}) : std::nullopt;
}

platform::EntryTime TimeFromNtfs(std::uint64_t units) {
  constexpr std::uint64_t kUnitsPerSecond = 10'000'000;
  constexpr std::int64_t kSecondsTo1970 = 11'644'473'600;
  return {static_cast<std::int64_t>(units / kUnitsPerSecond) - kSecondsTo1970,
          static_cast<std::int32_t>(units % kUnitsPerSecond * 100)};
}

}  // namespace quendle::modules
