#include "files/clsFileInfo.h"
#include "platform/process/local_time.h"

#include <chrono>
#include <utility>

#include "base/modString.h"

namespace quendle {
namespace {

constexpr std::int64_t kSecondsPerDay = 86'400;
constexpr std::int64_t kDaysFrom1899To1970 = 25'569;

}  // namespace

void clsFileInfo::Class_Initialize() {
  for (std::string* part : {&path_, &name_, &folder_, &base_, &extension_}) part->clear();
}

bool clsFileInfo::SetFilename(const std::string& path) {
  Class_Initialize();
  if (path.empty() || (path.size() > 1 && path.back() == Separator(kHostStyle))) {
    last_failure_ = Failure(platform::Code::kNotFound, path, why::kNotFound("No such file or directory"));
    return false;
  }
  last_failure_ = platform::ReadStatus(path, &status_);
  if (!last_failure_.ok()) return false;
  local_write_seconds_ = platform::SecondsOfLocalClock(status_.write_time.seconds);
  path_ = platform::LongPath(path);
  PathParts parts = SplitPath(path_);
  folder_ = std::move(parts.folder);
  name_ = std::move(parts.name);
  NameParts name = SplitName(name_);
  base_ = std::move(name.base);
  extension_ = std::move(name.extension);
  return true;
}

double clsFileInfo::pTimeWrite() const {
  return static_cast<double>(local_write_seconds_) / static_cast<double>(kSecondsPerDay) +
         static_cast<double>(kDaysFrom1899To1970);
}

CalendarDay clsFileInfo::WriteDay() const {
  const std::chrono::year_month_day day(std::chrono::floor<std::chrono::days>(
      std::chrono::sys_seconds(std::chrono::seconds(local_write_seconds_))));
  return {static_cast<int>(day.year()), static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day())};
}

}  // namespace quendle
