#include "platform/extraction/open_folders.h"

#include <algorithm>

namespace quendle::platform {
namespace {

// Of deeper paths only the last folder stays open: a process may have some hundred files open, and a path be
// of two thousand folders.
constexpr std::size_t kMostOpen = 32;

}  // namespace

std::string OpenFolders::Shown(const std::string& path) const {
  if (path.empty()) return WithoutTrailingSlashes(top_->Shown(""));
  std::string shown = top_->Shown(path);
  const std::size_t below = shown.size() - path.size();
  std::replace(shown.begin() + static_cast<std::ptrdiff_t>(below), shown.end(), '/', kSeparators.front());
  return shown;
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
    Result result = EnterNext(*entered, begin, end, make, &entered);
    if (!result.ok()) return result;
    if (levels_.size() > kMostOpen) levels_.back().handle.reset();
    levels_.push_back({end, entered});
  }
  *handle = std::move(entered);
  return Success();
}

Result OpenFolders::EnterNext(const OpenFolder& parent, std::size_t begin, std::size_t end, bool make,
                              FolderHandle* handle) const {
  const std::string name = path_.substr(begin, end - begin);
  OpenFolder opened;
  Result result = parent.Enter(name, OpenFolder::Use::kPass, &opened);
  if (result.code == Code::kNotFound && protected_ != nullptr) {
    if (Result kept = protected_->CheckName(parent, name); !kept.ok()) return kept;
  }
  if (result.code == Code::kNotFound && make) {
    result = parent.MakeFolder(name, {});
    if (result.ok() || result.code == Code::kExists)
      result = parent.Enter(name, OpenFolder::Use::kPass, &opened);
  }
  if (result.ok() && protected_ != nullptr) result = protected_->CheckFolder(opened);
  if (result.ok()) *handle = std::make_shared<OpenFolder>(std::move(opened));
  return result;
}

}  // namespace quendle::platform
