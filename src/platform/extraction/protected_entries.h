// Entries that nothing which is brought into a folder may replace, and names that it may not have. They are known by what
// the file system knows them by, so that no other spelling, link or second name leads around the protection.
#pragma once

#include <map>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "platform/entries/entry_status.h"
#include "platform/entries/open_folder.h"
#include "reasons/result.h"

namespace quendle::platform {

class ProtectedEntries {
 public:
  // Whose they are; the reason for a refusal says it.
  enum class Owner {
    kProgram,
    kArchive,  // that is being extracted
  };

  // Protects what is at the absolute `path` now. Of a file: itself, what it leads to when it is a link, each link on the
  // way to it, and its name, or the name of the first folder that is missing on the way. Of a folder: all that is and
  // comes to be in it.
  void Add(const std::string& path, Owner owner);

  // kRefused, with the path that the folder shows for `name`, where that name in the folder is protected; of what was not
  // there when it was added in any case, since there was no telling which cases are one.
  Result CheckName(const OpenFolder& folder, const std::string& name) const;
  // The same where `there`, the entry of that name, is protected.
  Result CheckEntry(const OpenFolder& folder, const std::string& name, const EntryStatus& there) const;
  // The same, with the folder's path, for a folder in which nothing may be made. The second looks above it, too.
  Result CheckFolder(const OpenFolder& folder) const;
  Result CheckFolderAndAbove(const OpenFolder& folder) const;

 private:
  struct Name {
    EntryId folder;
    std::string spelling;  // empty: any
    Owner owner;
  };

  void AddWay(const std::string& path, bool is_end);
  void AddAllIn(const std::string& folder, const EntryStatus& status);

  std::unordered_map<EntryId, Owner, EntryIdHash> entries_;
  std::unordered_map<EntryId, Owner, EntryIdHash> folders_;
  std::unordered_multimap<std::string, Name> names_;  // in upper case
  // While something is added:
  Owner owner_ = Owner::kProgram;
  int links_left_ = 0;
  std::unordered_set<std::string> walked_;
};

}  // namespace quendle::platform
