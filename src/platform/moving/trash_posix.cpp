#include "platform/moving/trash.h"
#include "platform/process/system_failure.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <ctime>
#include <string_view>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/entries/descriptor_posix.h"
#include "platform/entries/entry_status_posix.h"
#include "platform/entries/path_names.h"
#include "platform/entries/renaming.h"

namespace quendle::platform {
namespace {

struct Trash {
  std::string folder;
  std::string top;  // where the paths in it count from; empty for absolute paths
};

std::string HomeTrash() {
  const char* data = std::getenv("XDG_DATA_HOME");
  if (data != nullptr && *data == '/') return WithoutTrailingSlashes(data) + "/Trash";
  const char* home = std::getenv("HOME");
  return home != nullptr && *home == '/' ? WithoutTrailingSlashes(home) + "/.local/share/Trash" : "";
}

// The device of the folder, or of the one it would be made in.
dev_t DeviceFor(std::string folder) {
  struct stat status;
  while (stat(folder.c_str(), &status) != 0 && folder != "/") folder = FolderOf(folder);
  return status.st_dev;
}

// The topmost folder above `folder` on the same file system.
std::string TopOfFileSystem(std::string folder, dev_t device) {
  while (folder != "/") {
    const std::string parent = FolderOf(folder);
    struct stat status;
    if (stat(parent.c_str(), &status) != 0 || status.st_dev != device) break;
    folder = parent;
  }
  return folder;
}

bool MakePrivateFolders(const std::string& path) {
  if (mkdir(path.c_str(), S_IRWXU) == 0 || errno == EEXIST) return true;
  return errno == ENOENT && path != "/" && MakePrivateFolders(FolderOf(path)) &&
         mkdir(path.c_str(), S_IRWXU) == 0;
}

// In a place where others write too, a trash has to be a real folder of this user.
bool IsOwnFolder(const std::string& path) {
  struct stat status;
  return lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == geteuid();
}

Result ReadyTrash(const std::string& parent_of_entry, dev_t device, Trash* trash) {
  const std::string home = HomeTrash();
  if (!home.empty() && DeviceFor(home) == device) {
    trash->folder = home;
  } else {
    trash->top = TopOfFileSystem(parent_of_entry, device);
    const std::string user = std::to_string(getuid());
    const std::string base = trash->top == "/" ? "" : trash->top;
    struct stat shared;
    const bool has_shared = lstat((base + "/.Trash").c_str(), &shared) == 0 && S_ISDIR(shared.st_mode) &&
                            (shared.st_mode & S_ISVTX) != 0;
    trash->folder = base + (has_shared ? "/.Trash/" : "/.Trash-") + user;
    if (!MakePrivateFolders(trash->folder)) return LastSystemFailure(trash->folder);
    if (!IsOwnFolder(trash->folder)) return Failure(Code::kDenied, trash->folder, why::kForeignTrash);
  }
  for (const char* part : {"/info", "/files"}) {
    if (!MakePrivateFolders(trash->folder + part)) return LastSystemFailure(trash->folder + part);
  }
  return Success();
}

std::string PercentEncoded(const std::string& path) {
  constexpr char kHex[] = "0123456789ABCDEF";
  constexpr std::string_view kPlain = "-._~/";
  std::string encoded;
  for (const char c : path) {
    const auto byte = static_cast<unsigned char>(c);
    const bool is_letter_or_digit =
        (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
    if (is_letter_or_digit || kPlain.find(c) != std::string_view::npos) {
      encoded += c;
    } else {
      encoded += {'%', kHex[byte >> 4], kHex[byte & 15]};
    }
  }
  return encoded;
}

std::string InfoText(const Trash& trash, const std::string& real_path) {
  std::string path = real_path;
  if (!trash.top.empty()) path.erase(0, trash.top == "/" ? 1 : trash.top.size() + 1);
  const std::time_t now = std::time(nullptr);
  struct tm local;
  char date[sizeof "2000-01-01T00:00:00"];
  if (localtime_r(&now, &local) == nullptr || strftime(date, sizeof date, "%Y-%m-%dT%H:%M:%S", &local) == 0)
    *date = 0;
  return "[Trash Info]\nPath=" + PercentEncoded(path) + "\nDeletionDate=" + date + "\n";
}

// Room for a number and ".trashinfo" after the name; a character is not cut in two.
std::string Shortened(std::string name) {
  constexpr std::size_t kLongest = NAME_MAX - 24;
  if (name.size() <= kLongest) return name;
  std::size_t end = kLongest;
  while (end > 0 && (static_cast<unsigned char>(name[end]) & 0xC0) == 0x80) --end;
  return name.substr(0, end);
}

// 0 or an errno, EEXIST when there is such a file.
int WriteNewFile(const std::string& path, const std::string& text) {
  Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
  if (!file.ok()) return errno;
  const ssize_t written = Retried([&] { return write(file.get(), text.data(), text.size()); });
  int error = written < 0 ? errno : 0;
  if (error == 0 && written != static_cast<ssize_t>(text.size())) error = ENOSPC;
  if (error == 0 && !file.Close()) error = errno;
  if (error != 0) unlink(path.c_str());
  return error;
}

}  // namespace

Result TrashEntry(const std::string& path, TrashedEntry* trashed) {
  struct stat status;
  if (lstat(path.c_str(), &status) != 0) return LastSystemFailure(path);
  const std::string parent = RealPath(FolderOf(path));
  if (parent.empty()) return LastSystemFailure(FolderOf(path));
  const std::string name = NameOf(path);
  struct stat folder;  // not the entry itself, which could be the top of another file system
  if (stat(parent.c_str(), &folder) != 0) return LastSystemFailure(parent);
  Trash trash;
  Result ready = ReadyTrash(parent, folder.st_dev, &trash);
  if (!ready.ok()) return Failure(ready.code, ready.path, why::kNoTrash(ready.reason));

  const std::string info_text = InfoText(trash, (parent == "/" ? "" : parent) + "/" + name);
  for (unsigned number = 1;; ++number) {
    const std::string plain = trash.folder + "/files/" + Shortened(name);
    trashed->file = number == 1 ? plain : NumberedPath(plain, number, S_ISDIR(status.st_mode));
    trashed->info = trash.folder + "/info/" + NameOf(trashed->file) + ".trashinfo";
    trashed->original = path;
    trashed->id = StatusFrom(status).id;
    int error = WriteNewFile(trashed->info, info_text);
    if (error == EEXIST) continue;
    if (error != 0) return SystemFailure(error, trashed->info);
    error = RenameWithoutReplacing(path, trashed->file);
    if (error == 0) return Success();
    unlink(trashed->info.c_str());
    if (error != EEXIST) return SystemFailure(error, path);
  }
}

Result RestoreTrashed(const TrashedEntry& trashed) {
  EntryStatus now;
  Result result = ReadStatus(trashed.file, &now);
  if (result.ok() && now.id != trashed.id) result = Failure(Code::kFailed, trashed.file, why::kReplaced);
  if (!result.ok()) return result;
  const int error = RenameWithoutReplacing(trashed.file, trashed.original);
  if (error != 0) return SystemFailure(error, trashed.original);
  unlink(trashed.info.c_str());
  return Success();
}

}  // namespace quendle::platform
