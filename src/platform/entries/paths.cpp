#include "platform/entries/paths.h"

#include <algorithm>
#include <chrono>

#include "platform/entries/entry_status.h"
#include "platform/entries/open_folder.h"
#include "platform/entries/path_names.h"

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
      return Failure(Code::kRefused, part, why::kLinkInFoldersPlace);
  }
  return Success();
}

std::string WithRealFolder(const std::string& path) {
  const std::string folder = RealPath(FolderOf(path));
  return folder.empty() ? path : PathBelow(folder, NameOf(path));
}

}  // namespace quendle::platform
