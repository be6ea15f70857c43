#include "platform/paths.h"

#include <algorithm>
#include <chrono>

#include "platform/entry_names.h"
#include "platform/entry_status.h"
#include "platform/local_time.h"
#include "platform/open_folder.h"

namespace quendle::platform {

bool IsFolder(const std::string& path) {
  EntryStatus status;
  return ReadTargetStatus(path, &status).ok() && status.is_folder();
}

bool IsTaken(const std::string& path) {
  EntryStatus status;
  return ReadStatus(path, &status).ok();
}

bool IsTakenByFile(const std::string& path) {
  EntryStatus status;
  if (!ReadStatus(path, &status).ok() || status.is_folder()) return false;
  return !status.is_link() || !IsFolder(path);
}

Result CheckNoLinks(const std::string& folder, const std::string& path) {
  for (std::size_t end = 0; end < path.size(); ++end) {
    end = std::min(path.find_first_of(kSeparators, end), path.size());
    const std::string part = PathBelow(folder, path.substr(0, end));
    EntryStatus status;
    if (ReadStatus(WithoutTrailingSlashes(part), &status).ok() && status.is_link())
      return Failure(Code::kRefused, part, "a link is in the place of the folder");
  }
  return Success();
}

bool FoldersCollide(const std::string& source, const std::string& destination) {
  EntryStatus from;
  EntryStatus to;
  if (!ReadStatus(destination, &to).ok()) return false;
  if (!to.is_folder() || !ReadStatus(source, &from).ok() || !from.is_folder()) return true;
  OpenFolder folder;
  std::vector<std::string> names;
  if (!OpenFolder::OpenItself(source, source, OpenFolder::Use::kList, &folder).ok() ||
      !folder.List(&names).ok())
    return false;
  return std::any_of(names.begin(), names.end(), [&](const std::string& name) {
    return FoldersCollide(PathBelow(source, name), PathBelow(destination, name));
  });
}

std::string WithRealFolder(const std::string& path) {
  const std::string folder = RealPath(FolderOf(path));
  return folder.empty() ? path : PathBelow(folder, NameOf(path));
}

std::int64_t SecondsOfLocalClock(std::int64_t seconds) {
  using namespace std::chrono;
  std::tm local;
  if (!ToLocalTime(seconds, &local)) return seconds;
  const sys_days day = year(local.tm_year + 1900) / (local.tm_mon + 1) / local.tm_mday;
  const auto shown = day + hours(local.tm_hour) + minutes(local.tm_min) + std::chrono::seconds(local.tm_sec);
  return shown.time_since_epoch().count();
}

}  // namespace quendle::platform
