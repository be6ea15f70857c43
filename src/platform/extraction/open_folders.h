// Folders below an open one, entered without following links and kept open while they are on the way.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/entries/open_folder.h"
#include "platform/extraction/protected_entries.h"
#include "reasons/result.h"

namespace quendle::platform {

// Shared, so that what was begun in a folder can be ended there whatever has happened to its name.
using FolderHandle = std::shared_ptr<const OpenFolder>;

class OpenFolders {
 public:
  explicit OpenFolders(OpenFolder top) : top_(std::make_shared<OpenFolder>(std::move(top))) {}

  const OpenFolder& top() const { return *top_; }

  // From now on no folder is entered in which nothing may be made, nor made under a name that is kept for something else:
  // Enter is kRefused, also without `make`. `entries` outlives the object.
  void Protect(const ProtectedEntries* entries) { protected_ = entries; }

  // The path, with "/" between its parts, as failures name it.
  std::string Shown(const std::string& path) const;

  // Opens a folder by its path below the top, "" for the top itself, for passing through. With `make` missing
  // folders are made. kNotFolder, with the path of that part, for a file or link on the way.
  Result Enter(const std::string& folder, bool make, FolderHandle* handle);

 private:
  struct Level {
    std::size_t end;      // of its path in path_
    FolderHandle handle;  // null: closed again
  };

  Result EnterNext(const OpenFolder& parent, std::size_t begin, std::size_t end, bool make,
                   FolderHandle* handle) const;

  FolderHandle top_;
  const ProtectedEntries* protected_ = nullptr;
  std::string path_;  // the levels are folders on it
  std::vector<Level> levels_;
};

}  // namespace quendle::platform
