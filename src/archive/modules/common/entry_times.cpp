#include "archive/modules/common/entry_times.h"

#include <ctime>

namespace quendle::modules {

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
  const std::time_t time = std::mktime(&parts);
  if (time == std::time_t{-1}) return std::nullopt;
  return platform::EntryTime{static_cast<std::int64_t>(time), 0};
}

platform::EntryTime TimeFromNtfs(std::uint64_t units) {
  constexpr std::uint64_t kUnitsPerSecond = 10'000'000;
  constexpr std::int64_t kSecondsTo1970 = 11'644'473'600;
  return {static_cast<std::int64_t>(units / kUnitsPerSecond) - kSecondsTo1970,
          static_cast<std::int32_t>(units % kUnitsPerSecond * 100)};
}

}  // namespace quendle::modules
