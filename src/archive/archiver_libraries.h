// The archiver libraries that are installed: those that the module folder holds at the moment and, where that has none of a
// name, those that the user has put into one of platform::LibraryFolders.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "archive/archiver_library.h"
#include "archive/archiver_table.h"

namespace quendle {

class ArchiverLibraries {
 public:
  // Nothing is loaded yet. With an empty folder there are no libraries.
  explicit ArchiverLibraries(std::string folder) : folder_(std::move(folder)) {}

  // Is its file there now? A folder of that name does not count.
  bool IsInstalled(const ArchiverRow& row) const { return IsInstalled(row.library); }
  bool IsInstalled(const std::string& library) const;

  // Where the library of that name, without the system's suffix, is, or would be.
  std::string FileName(const std::string& library) const;

  // Where libraries that users have put there would be loaded from, whether there are some now or not.
  static std::vector<std::string> PlacesOfUsers();

  // The library, loaded if it is not. Null when it cannot be: then it counts as missing, and Problems tells
  // why.
  const ArchiverLibrary* Use(const ArchiverRow& row);

  // Why the row's library could not be loaded; empty when it could, or was not tried.
  Reason Problem(const ArchiverRow& row) const;

  // One line for each library that is there and cannot be used.
  std::vector<std::string> Problems() const;

 private:
  std::string folder_;
  std::map<std::int16_t, std::unique_ptr<ArchiverLibrary>> loaded_;  // by type
  std::map<std::int16_t, platform::Result> failures_;
};

}  // namespace quendle
