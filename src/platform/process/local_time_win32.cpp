#include "platform/process/local_time.h"
#include "platform/text/wide_win32.h"

namespace quendle::platform {
namespace {

constexpr std::int64_t kTicksPerSecond = 10'000'000;
constexpr std::int64_t kFirstSecond = -11'644'473'600;  // the year 1601
constexpr std::int64_t kLastSecond = 910'670'515'199;   // the year 30827

int DayOfYear(const SYSTEMTIME& date) {
  constexpr int kDaysBefore[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
  const bool is_leap = (date.wYear % 4 == 0 && date.wYear % 100 != 0) || date.wYear % 400 == 0;
  return kDaysBefore[date.wMonth - 1] + date.wDay - 1 + (is_leap && date.wMonth > 2 ? 1 : 0);
}

}  // namespace

// The C runtime knows no time before 1970 and applies the rules of this year to all others.
bool ToLocalTime(std::int64_t seconds, std::tm* local) {
  if (seconds < kFirstSecond || seconds > kLastSecond) return false;
  const auto ticks = static_cast<std::uint64_t>((seconds - kFirstSecond) * kTicksPerSecond);
  const FILETIME time = {static_cast<DWORD>(ticks & 0xFFFFFFFF), static_cast<DWORD>(ticks >> 32)};
  SYSTEMTIME universal;
  SYSTEMTIME shown;
  if (FileTimeToSystemTime(&time, &universal) == 0 ||
      SystemTimeToTzSpecificLocalTime(nullptr, &universal, &shown) == 0) {
    return false;
  }
  *local = {};
  local->tm_year = shown.wYear - 1900;
  local->tm_mon = shown.wMonth - 1;
  local->tm_mday = shown.wDay;
  local->tm_hour = shown.wHour;
  local->tm_min = shown.wMinute;
  local->tm_sec = shown.wSecond;
  local->tm_wday = shown.wDayOfWeek;
  local->tm_yday = DayOfYear(shown);
  local->tm_isdst = -1;
  return true;
}

}  // namespace quendle::platform
