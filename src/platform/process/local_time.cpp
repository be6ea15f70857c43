#include "platform/process/local_time.h"

#include <chrono>

namespace quendle::platform {

std::int64_t SecondsOfLocalClock(std::int64_t seconds) {
  using namespace std::chrono;
  std::tm local;
  if (!ToLocalTime(seconds, &local)) return seconds;
  const sys_days day = year(local.tm_year + 1900) / (local.tm_mon + 1) / local.tm_mday;
  const auto shown = day + hours(local.tm_hour) + minutes(local.tm_min) + std::chrono::seconds(local.tm_sec);
  return shown.time_since_epoch().count();
}

}  // namespace quendle::platform
