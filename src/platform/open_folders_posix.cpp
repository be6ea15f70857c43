#include "platform/open_folders_posix.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>

namespace quendle::platform {
namespace {

// Of deeper paths only the last folder stays open: a process may have some hundred files open, and a path be
// of two thousand folders.
constexpr std::size_t kMostOpen = 32;

}  // namespace

std::string OpenFolders::Shown(const std::string& path) const {
  if (path.empty()) return shown_;
  return shown_ == "/" ? shown_ + path : shown_ + "/" + path;
}

Result OpenFolders::Enter(const std::string& folder, bool make, FolderHandle* handle) {
  const auto same = static_cast<std::size_t>(
      std::mismatch(folder.begin(), folder.end(), path_.begin(), path_.end()).first - folder.begin());
  const auto is_on_the_way = [&](const Level& level) {
    return level.handle != nullptr && level.end <= same &&
           (level.end == folder.size() || folder[level.end] == '/');
  };
  while (!levels_.empty() && !is_on_the_way(levels_.back())) levels_.pop_back();
  path_ = folder;

  FolderHandle entered = levels_.empty() ? top_ : levels_.back().handle;
  for (std::size_t begin = levels_.empty() ? 0 : levels_.back().end + 1; begin < folder.size();
       begin = levels_.back().end + 1) {
    const std::size_t end = std::min(folder.find('/', begin), folder.size());
    Result result = EnterNext(entered->get(), begin, end, make, &entered);
    if (!result.ok()) return result;
    if (levels_.size() > kMostOpen) levels_.back().handle.reset();
    levels_.push_back({end, entered});
  }
  *handle = std::move(entered);
  return Success();
}

Result OpenFolders::EnterNext(int parent, std::size_t begin, std::size_t end, bool make,
                              FolderHandle* handle) const {
  const std::string name = path_.substr(begin, end - begin);
  const auto enter = [&] {
    return Retried(
        [&] { return openat(parent, name.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC); });
  };
  Descriptor opened(enter());
  if (!opened.ok() && errno == ENOENT && make) {
    if (mkdirat(parent, name.c_str(), S_IRWXU | S_IRWXG | S_IRWXO) != 0 && errno != EEXIST)
      return LastSystemFailure(Shown(path_.substr(0, end)));
    opened = Descriptor(enter());
  }
  if (!opened.ok()) {
    if (errno == ENOTDIR || errno == ELOOP) {
      return Failure(Code::kNotFolder, Shown(path_.substr(0, end)),
                     "a file or a link is where a folder would be");
    }
    return LastSystemFailure(Shown(path_.substr(0, end)));
  }
  *handle = std::make_shared<Descriptor>(std::move(opened));
  return Success();
}

}  // namespace quendle::platform
