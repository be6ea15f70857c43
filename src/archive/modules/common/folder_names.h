// The names in a folder, found in any case: the files of a set may have come from a system where case does not count.
#pragma once

#include <map>
#include <string>

namespace quendle::modules {

class FolderNames {
 public:
  // `folder` has its separator at the end; an empty one is where the process is. Only names that begin like `stem` are
  // kept. A folder that cannot be listed has none.
  FolderNames(const std::string& folder, const std::string& stem);

  // That name if it is there, else one that differs in case only, else null.
  const std::string* Find(const std::string& name) const;

 private:
  std::multimap<std::string, std::string> names_;
};

// How much of a path is its folder, the separator included.
std::size_t FolderSize(const std::string& path);

}  // namespace quendle::modules
