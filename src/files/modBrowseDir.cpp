#include "files/modBrowseDir.h"

#include "base/modString.h"

namespace quendle {

std::string PickerStartFolder(const std::string& proposed) {
  // Where the separator of a root or a drive stands: "/", "C:\". A cut there leaves no folder.
  constexpr std::size_t kRootSeparator = kHostStyle == PathStyle::kWindows ? 2 : 0;
  std::string folder = RemoveBackslash(proposed);
  while (!FolderExists(folder)) {
    const std::size_t cut = folder.rfind(Separator(kHostStyle));
    if (cut == std::string::npos || cut <= kRootSeparator) return "";
    folder.resize(cut);
  }
  return AddBackslash(folder);
}

}  // namespace quendle
