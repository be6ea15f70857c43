// Looking at and making file-system entries.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "reasons/result.h"

namespace quendle::platform {

// True for an existing folder, also through a symbolic link. Any error is false.
bool IsFolder(const std::string& path);

// True when the name is taken by anything at all, a dangling link included. Any error is false.
bool IsTaken(const std::string& path);

// The same, but by anything that is neither a folder nor a link to one.
bool IsTakenByFile(const std::string& path);

// Full path of an executable file of that bare name on the executable search path, or empty. Entries of the
// path that are empty or relative are skipped: they would mean the current folder. Windows: a name without a
// dot gets ".exe".
std::string FindOnSearchPath(const std::string& name);

// Makes one folder; its parent must exist. kExists when the name is taken.
Result MakeFolder(const std::string& path);

// A new empty file with a unique name in `folder`, and its path in `*path`.
Result MakeTemporaryFile(const std::string& folder, std::string* path);

// Removes a file of the program's own making; a link itself, not what it leads to.
Result RemoveFile(const std::string& path);

// kExists when the folder is not empty.
Result RemoveEmptyFolder(const std::string& path);

// Could an entry be made at `path`, after making its missing folders? Looks without trying: the nearest
// folder that is there must be one and let this process write, and no name may be too long. Windows: nor may
// one that is to be made be a device's, or one that other programs could not use.
Result CheckPlace(const std::string& path);

// kRefused when a part of `path` below `folder` is a link. What does not exist is none.
//   ("/d", "a/b") => looks at /d/a and /d/a/b
Result CheckNoLinks(const std::string& folder, const std::string& path);

// The same entry by the path without links in its folder, so that equal strings mean one place. The path as
// it is when its folder does not exist.
std::string WithRealFolder(const std::string& path);

// Absolute, without a trailing separator (except a root); empty when it has been removed.
std::string CurrentFolder();

// The path made absolute against the current folder, "." and ".." resolved, each component spelled as its
// folder lists it; on Windows with short names spelled out. A link that is the last component is kept as it
// is. Empty when a component cannot be found, or the path is relative and the current folder has been
// removed.
std::string LongPath(const std::string& path);

}  // namespace quendle::platform
