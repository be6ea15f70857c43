#include "archive/modules/common/folder_names.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "platform/entries/open_folder.h"
#include "platform/entries/path_names.h"
#include "platform/text/unicode.h"

namespace quendle::modules {

using platform::UpperCase;

FolderNames::FolderNames(const std::string& folder, const std::string& stem) {
  const std::string listed = folder.empty() ? "." : folder;
  platform::OpenFolder open;
  std::vector<std::string> names;
  if (!platform::OpenFolder::Open(listed, listed, platform::OpenFolder::Use::kList, &open).ok() ||
      !open.List(&names).ok()) {
    return;
  }
  const std::string wanted = UpperCase(stem);
  for (std::string& name : names) {
    std::string upper = UpperCase(name);
    if (upper.starts_with(wanted)) names_.emplace(std::move(upper), std::move(name));
  }
}

const std::string* FolderNames::Find(const std::string& name) const {
  const auto [first, last] = names_.equal_range(UpperCase(name));
  if (first == last) return nullptr;
  const auto exact = std::find_if(first, last, [&](const auto& entry) { return entry.second == name; });
  return exact != last ? &exact->second : &first->second;
}

std::size_t FolderSize(const std::string& path) {
  return path.find_last_of(platform::kSeparators) + 1;
}

}  // namespace quendle::modules
