// Names of entries, who is who among them, and renaming that replaces nothing.
#pragma once

#include <string>

#include <sys/stat.h>

#include "platform/result.h"

namespace quendle::platform {

// Without the separators at its end, which would make the system follow a link.
std::string WithoutTrailingSlashes(std::string path);

// The folder that holds the entry, "." for a bare name, and the entry's name in it.
std::string FolderOf(const std::string& path);
std::string NameOf(const std::string& path);

// The path without links, "." and ".."; empty, with errno set, when it does not exist.
std::string RealPath(const std::string& path);

// A hidden name beside `path` for what is to become it. One that is taken all the same, of a million million,
// makes the operation fail, nothing worse.
//   "/d/name" => "/d/.quendle-abcdefgh.part"
std::string TemporaryPath(const std::string& path);

// "name.ext" => "name (2).ext"; folders and hidden files without another dot have no extension.
std::string NumberedPath(const std::string& path, unsigned number, bool is_folder);

inline bool IsSameEntry(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

// Is it the same entry with the same content and metadata as when `before` was read?
bool IsUnchanged(const struct stat& before, const struct stat& now);

// Is `path`, an existing folder, the folder `top` or somewhere below it?
bool IsAtOrBelow(const std::string& path, const struct stat& top);

// Fails when it can be known that `entry` of the folder cannot be removed from it. `folder` is open or
// AT_FDCWD; `name` is the folder's path from there.
Result CheckRemovable(int folder, const char* name, const std::string& shown, const struct stat& entry);

// Renames within a file system; 0 or an errno, EEXIST when the new name is taken by anything.
int RenameWithoutReplacing(const std::string& from, const std::string& to);
// The same for paths that start from open folders.
int RenameWithoutReplacing(int from_folder, const char* from, int to_folder, const char* to);

// Makes a rename in that folder last through a power failure. An open folder is called `shown` in failures.
Result SyncFolder(const std::string& folder);
Result SyncOpenFolder(int folder, const std::string& shown);

}  // namespace quendle::platform
