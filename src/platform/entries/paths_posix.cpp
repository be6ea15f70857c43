#include "platform/entries/paths.h"
#include "platform/process/process.h"
#include "platform/process/system_failure.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "platform/entries/entry_status_posix.h"
#include "platform/entries/path_names.h"
#include "platform/text/unicode.h"

namespace quendle::platform {
namespace {

std::string SwappedCase(const std::string& name) {
  std::string swapped = UpperCase(name);
  if (swapped == name) {
    for (char& c : swapped) {
      if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
  }
  return swapped;
}

bool HasLetter(const std::string& name) {
  return std::any_of(name.begin(), name.end(), [](char c) { return (c | 0x20) >= 'a' && (c | 0x20) <= 'z'; });
}

// The spelling under which `folder` lists the entry `name`. Reading a folder of a million entries costs
// seconds, so it is only read where the same entry also answers to the name in other case; `*tells_case` is
// set once it is known of the folder that none does.
std::string ListedName(const std::string& folder, const std::string& name, const struct stat& entry,
                       bool* tells_case) {
  const std::string swapped = SwappedCase(name);
  if (*tells_case || swapped == name) return name;
  struct stat other;
  const bool is_there = lstat((folder + "/" + swapped).c_str(), &other) == 0;
  if (!is_there || !IsSameEntry(StatusFrom(entry), StatusFrom(other))) {
    *tells_case = HasLetter(name) && (is_there || errno == ENOENT);
    return name;
  }
  const std::unique_ptr<DIR, int (*)(DIR*)> listing(opendir(folder.empty() ? "/" : folder.c_str()), closedir);
  if (listing == nullptr) return name;
  const std::string wanted = UpperCase(name);
  std::string found = name;
  while (const dirent* listed = readdir(listing.get())) {
    if (name == listed->d_name) return name;
    if (UpperCase(listed->d_name) == wanted) found = listed->d_name;
  }
  return found;
}

bool IsDots(std::string_view component) {
  return component == "." || component == "..";
}

bool IsExecutableFile(const std::string& path) {
  struct stat entry;
  return stat(path.c_str(), &entry) == 0 && S_ISREG(entry.st_mode) && access(path.c_str(), X_OK) == 0;
}

}  // namespace

std::string FindOnSearchPath(const std::string& name) {
  const std::string folders = EnvironmentVariable("PATH").value_or("/usr/local/bin:/usr/bin:/bin") + ":";
  for (std::size_t begin = 0, end; (end = folders.find(':', begin)) != std::string::npos; begin = end + 1) {
    if (end == begin || folders[begin] != '/') continue;
    std::string candidate = folders.substr(begin, end - begin) + "/" + name;
    if (IsExecutableFile(candidate)) return candidate;
  }
  return "";
}

Result MakeFolder(const std::string& path) {
  return mkdir(path.c_str(), 0777) == 0 ? Success() : LastSystemFailure(path);
}

Result MakeTemporaryFile(const std::string& folder, std::string* path) {
  std::string name = folder + "/tmpXXXXXX";
  const int file = mkostemp(name.data(), O_CLOEXEC);
  if (file < 0) return LastSystemFailure(folder);
  close(file);
  *path = name;
  return Success();
}

Result RemoveFile(const std::string& path) {
  return unlink(path.c_str()) == 0 ? Success() : LastSystemFailure(path);
}

Result RemoveEmptyFolder(const std::string& path) {
  return rmdir(path.c_str()) == 0 ? Success() : LastSystemFailure(path);
}

Result CheckPlace(const std::string& path) {
  struct stat entry;
  if (lstat(path.c_str(), &entry) != 0 && errno != ENOENT && errno != ENOTDIR) return LastSystemFailure(path);
  std::string folder = path;
  do {
    folder = FolderOf(folder);
  } while (lstat(folder.c_str(), &entry) != 0 && folder != "/" && folder != ".");
  if (!IsFolder(folder)) return SystemFailure(ENOTDIR, folder);
  if (faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) != 0) return LastSystemFailure(folder);
  return Success();
}

namespace {

// Goes on from `*result` by a component of the path; false when there is no such entry.
bool Append(const std::string& name, bool* tells_case, std::string* result) {
  if (IsDots(name)) {
    // They mean what the system makes of them, which through links is not what the text says.
    *result = RealPath(*result + "/" + name);
    const bool is_there = !result->empty();
    if (*result == "/") result->clear();
    return is_there;
  }
  struct stat entry;
  if (lstat((*result + "/" + name).c_str(), &entry) != 0) return false;
  const std::string listed = ListedName(*result, name, entry, tells_case);
  result->append("/").append(listed);
  return true;
}

bool AppendAll(const std::string& path, std::string* result) {
  for (std::size_t begin = path.find_first_not_of('/'), end; begin < path.size();
       begin = path.find_first_not_of('/', end)) {
    end = std::min(path.find('/', begin), path.size());
    bool tells_case = false;
    if (!Append(path.substr(begin, end - begin), &tells_case, result)) return false;
  }
  return true;
}

// The folder of the path that was asked for last: a run asks for thousands of paths in one folder. While its
// path leads to the same folder, and has no "." or ".." in it, what was found out holds.
struct KnownFolder {
  std::string path;
  EntryId id;
  std::string long_path;
  bool tells_case = false;
};

bool FindOut(const std::string& path, KnownFolder* known) {
  struct stat entry;
  const bool is_there = stat(path.c_str(), &entry) == 0;
  if (is_there && path == known->path && StatusFrom(entry).id == known->id) return true;
  *known = {path, is_there ? StatusFrom(entry).id : EntryId(), "", false};
  if (!AppendAll(path, &known->long_path)) return false;
  if (!is_there || (path + "/").find("/.") != std::string::npos) known->path.clear();
  return true;
}

}  // namespace

std::string CurrentFolder() {
  const std::unique_ptr<char, void (*)(void*)> folder(getcwd(nullptr, 0), std::free);
  return folder == nullptr ? "" : folder.get();
}

std::string LongPath(const std::string& path) {
  if (path.empty()) return "";
  std::string rest = path;
  if (path.front() != '/') {
    const std::string here = CurrentFolder();
    if (here.empty()) return "";  // it was removed
    rest = here + "/" + path;
  }
  rest = WithoutTrailingSlashes(rest);
  thread_local KnownFolder known;
  if (!FindOut(FolderOf(rest), &known)) {
    known.path.clear();
    return "";
  }
  std::string result = known.long_path;
  if (const std::string name = NameOf(rest); !name.empty() && !Append(name, &known.tells_case, &result))
    return "";
  return result.empty() ? "/" : result;
}

}  // namespace quendle::platform
