#include "platform/entries/durable_file.h"
#include "platform/process/system_failure.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <iterator>
#include <utility>
#include <vector>

#include "platform/entries/entry_status_win32.h"
#include "platform/entries/link_win32.h"
#include "platform/entries/nt_file_win32.h"
#include "platform/entries/open_folder.h"
#include "platform/entries/path_names.h"
#include "platform/entries/watched_read.h"
#include "platform/process/process.h"

namespace quendle::platform {
namespace {

// Far above any settings file, far below what would exhaust memory once it is decoded and parsed.
constexpr std::uint64_t kGreatestSize = std::uint64_t{256} << 20;

constexpr int kMostLinks = 40;

constexpr auto kLongestWait = std::chrono::seconds(10);
constexpr DWORD kShortestPause = 1;  // ms
constexpr DWORD kLongestPause = 50;

// Others may go on working with the file while it is read.
Handle OpenForReading(const std::string& path, DWORD flags) {
  return Handle(CreateFileW(SystemPath(path).c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING,
                            FILE_FLAG_BACKUP_SEMANTICS | flags, nullptr));
}

// The system says of a path below a file that it is not found.
Result NotOpened(const std::string& path) {
  Result result = LastSystemFailure(path);
  EntryStatus above;
  const std::string folder = FolderOf(path);
  if (result.code != Code::kNotFound || !ReadTargetStatus(folder, &above).ok() || above.is_folder())
    return result;
  return Failure(Code::kNotFolder, path, why::kNoFolderInPlace);
}

// Follows links in the last component, so that the answer is where the file is or, when it is missing, would
// be.
Result FollowLinks(const std::string& path, std::string* real) {
  *real = path;
  for (int links = 0; links < kMostLinks; ++links) {
    EntryStatus status;
    if (!ReadStatus(*real, &status).ok() || !status.is_link()) return Success();
    const Handle link = OpenForReading(*real, FILE_FLAG_OPEN_REPARSE_POINT);
    std::string record;
    if (!link.ok() || ReadLinkRecord(link.get(), &record) != 0) return LastSystemFailure(path);
    const auto target = SymbolicTarget(record);
    if (!target) return Success();  // to a folder
    const std::string text = TextFromWide(*target);
    const bool is_whole = text.starts_with('\\') || text.find(':') != std::string::npos;
    *real = is_whole ? text : PathBelow(FolderOf(*real), text);
  }
  return SystemFailure(ERROR_CANT_RESOLVE_FILENAME, path);
}

Result ReadUpTo(HANDLE file, std::uint64_t expected, const std::string& path, std::string* bytes) {
  bytes->resize(static_cast<std::size_t>(expected) + 1);  // one more, to see the end without reading twice
  std::size_t filled = 0;
  while (true) {
    if (filled == bytes->size()) bytes->resize(filled * 2);
    if (filled > kGreatestSize) return Failure(Code::kRefused, path, why::kFileTooLarge);
    DWORD got = 0;
    if (ReadFile(file, bytes->data() + filled, static_cast<DWORD>(bytes->size() - filled), &got, nullptr) ==
        0)
      return LastSystemFailure(path);
    if (got == 0) break;
    filled += got;
  }
  bytes->resize(filled);
  return Success();
}

Result CheckRegular(const EntryStatus& status, const std::string& path) {
  if (status.is_folder()) return Failure(Code::kIsFolder, path, why::kThisIsFolder);
  return status.is_file() ? Success() : Failure(Code::kRefused, path, why::kNotRegularFile);
}

// The system opens it for who tolerates no writers only while there are none, and lets none in until it is closed.
WatchedRead::Writers KeepWritersOut(HANDLE file, Handle* alone) {
  *alone = Handle(ReOpenFile(file, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE, 0));
  if (alone->ok()) return WatchedRead::Writers::kNone;
  return GetLastError() == ERROR_SHARING_VIOLATION ? WatchedRead::Writers::kSome
                                                   : WatchedRead::Writers::kUnknown;
}

// Says whether the file at `real`, if there is one, may be replaced. `*exists` tells whether there is.
Result CheckReplaceable(const std::string& real, EntryStatus* old, bool* exists) {
  if (NameOf(real).empty()) return SystemFailure(ERROR_FILE_NOT_FOUND, real);
  Result result = ReadStatus(real, old);
  *exists = result.ok();
  if (!*exists) return result.code == Code::kNotFound ? Success() : result;
  result = CheckRegular(*old, real);
  if (!result.ok()) return result;
  // Renaming over it might succeed, but its owner has said that it is not to be written.
  const Handle writable(
      CreateFileW(SystemPath(real).c_str(), FILE_WRITE_DATA, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr));
  if (!writable.ok()) return LastSystemFailure(real);
  // Wine lets everybody write it.
  return (old->mode & FILE_ATTRIBUTE_READONLY) == 0 ? Success() : SystemFailure(ERROR_ACCESS_DENIED, real);
}

Result WriteAll(HANDLE file, std::string_view bytes, const std::string& path) {
  while (!bytes.empty()) {
    constexpr std::size_t kAtOnce = 1U << 30;
    DWORD written = 0;
    if (WriteFile(file, bytes.data(), static_cast<DWORD>(std::min(bytes.size(), kAtOnce)), &written,
                  nullptr) == 0)
      return LastSystemFailure(path);
    if (written == 0) return SystemFailure(ERROR_DISK_FULL, path);
    bytes.remove_prefix(written);
  }
  return Success();
}

// A new file beside the one it will replace, removed again unless it has taken that one's place.
class Replacement {
 public:
  Replacement(const OpenFolder& folder, const std::string& path) : folder_(folder), path_(path) {}
  ~Replacement() {
    file_.Close();
    if (!name_.empty()) (void)folder_.Remove(name_);
  }
  Replacement(const Replacement&) = delete;
  Replacement& operator=(const Replacement&) = delete;

  Result Create() {
    const std::string name = NameOf(TemporaryPath(path_));
    Result result = folder_.MakeFile(name, {.is_private = true, .is_hidden = true}, &file_);
    if (result.ok()) name_ = name;
    result.path = result.ok() ? "" : FolderOf(path_);
    return result;
  }

  Result Fill(std::string_view bytes) {
    Result result = WriteAll(HandleFrom(file_.get()), bytes, path_);
    if (result.ok() && FlushFileBuffers(HandleFrom(file_.get())) == 0) return LastSystemFailure(path_);
    return result;
  }

  // `old` is null where there was none. Rights that cannot be given are those of the folder then.
  Result TakeOver(const EntryStatus* old) {
    FILE_BASIC_INFO basic = {};
    basic.FileAttributes = FILE_ATTRIBUTE_ARCHIVE;
    if (old != nullptr) {
      basic.FileAttributes |= old->mode & (FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM);
      basic.CreationTime = SystemTime(old->birth_time);
      CopyRights();
    }
    const HANDLE file = HandleFrom(file_.get());
    const bool set = SetFileInformationByHandle(file, FileBasicInfo, &basic, sizeof basic) != 0;
    return set && file_.Close() ? Success() : LastSystemFailure(path_);
  }

  // Whoever reads the file at this moment, a virus scanner above all, may hold its name for an instant.
  Result Install() {
    constexpr int kTries = 10;
    constexpr DWORD kPause = 20;
    for (int tries = 1;; ++tries) {
      const int error = folder_.Rename(name_, folder_, NameOf(path_), true);
      if (error == 0) break;
      if (tries == kTries || (error != ERROR_ACCESS_DENIED && error != ERROR_SHARING_VIOLATION))
        return SystemFailure(error, path_);
      Sleep(kPause);
    }
    name_.clear();
    return Success();
  }

 private:
  void CopyRights() const {
    constexpr SECURITY_INFORMATION kRights = DACL_SECURITY_INFORMATION;
    const std::wstring old = SystemPath(path_);
    const std::wstring copy = SystemPath(PathBelow(FolderOf(path_), name_));
    DWORD size = 0;
    (void)GetFileSecurityW(old.c_str(), kRights, nullptr, 0, &size);
    std::vector<char> rights(size);
    if (size > 0 && GetFileSecurityW(old.c_str(), kRights, rights.data(), size, &size) != 0)
      (void)SetFileSecurityW(copy.c_str(), kRights, rights.data());
  }

  const OpenFolder& folder_;
  const std::string& path_;  // of the file to be replaced, which failures name: nobody knows the other
  std::string name_;
  SystemHandle file_;
};

// Makes the new name itself survive a crash.
void FlushName(const std::string& path) {
  const Handle file(
      CreateFileW(SystemPath(path).c_str(), GENERIC_WRITE, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr));
  if (file.ok()) (void)FlushFileBuffers(file.get());
}

// What is there only as long as somebody has it open, and is of the folder whatever path leads to it.
std::wstring LockName(const EntryId& folder) {
  wchar_t name[80];
  std::swprintf(name, std::size(name), L"Global\\Quendle-folder-%016llx-%016llx%016llx",
                static_cast<unsigned long long>(folder.volume), static_cast<unsigned long long>(folder.high),
                static_cast<unsigned long long>(folder.low));
  return name;
}

// ERROR_ALREADY_EXISTS while somebody has it.
DWORD TryLock(const std::wstring& name, Handle* lock) {
  Handle made(CreateMutexW(nullptr, FALSE, name.c_str()));
  const DWORD error = GetLastError();
  if (!made.ok()) return error == ERROR_ACCESS_DENIED ? ERROR_ALREADY_EXISTS : error;  // another user's
  if (error != ERROR_ALREADY_EXISTS) *lock = std::move(made);
  return error;
}

}  // namespace

Result ReadRegularFile(const std::string& path, std::string* bytes, WatchedRead* watched) {
  const Handle file = OpenForReading(path, 0);
  if (!file.ok()) return NotOpened(path);
  if (GetFileType(file.get()) != FILE_TYPE_DISK) return Failure(Code::kRefused, path, why::kNotRegularFile);
  EntryStatus status;
  Result result = ResultOf(StatusOfOpen(file.get(), &status), path);
  if (result.ok()) result = CheckRegular(status, path);
  if (!result.ok()) return result;
  if (status.size > kGreatestSize) return Failure(Code::kRefused, path, why::kFileTooLarge);
  if (watched == nullptr) return ReadUpTo(file.get(), status.size, path, bytes);
  Handle alone;
  if (IsChangedLately(status)) {
    watched->writers = KeepWritersOut(file.get(), &alone);
    if (result = ResultOf(StatusOfOpen(file.get(), &status), path); !result.ok()) return result;
  }
  watched->before = status;
  result = ReadUpTo(file.get(), status.size, path, bytes);
  return result.ok() ? ResultOf(StatusOfOpen(file.get(), &watched->after), path) : result;
}

Result ReplaceFile(const std::string& path, std::string_view bytes) {
  std::string real;
  EntryStatus old;
  bool exists = false;
  OpenFolder folder;
  Result result = FollowLinks(path, &real);
  if (result.ok()) result = CheckReplaceable(real, &old, &exists);
  if (result.ok()) result = OpenFolder::Open(FolderOf(real), FolderOf(real), OpenFolder::Use::kPass, &folder);
  if (!result.ok()) return result;
  Replacement replacement(folder, real);
  result = replacement.Create();
  if (result.ok()) result = replacement.Fill(bytes);
  if (result.ok()) result = replacement.TakeOver(exists ? &old : nullptr);
  if (result.ok()) result = replacement.Install();
  if (result.ok()) FlushName(real);
  return result;
}

Result WriteTemporaryFile(const std::string& path, std::string_view bytes) {
  const Handle file(CreateFileW(SystemPath(path).c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE,
                                nullptr, OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
  if (!file.ok()) return LastSystemFailure(path);
  EntryStatus status;
  Result result = ResultOf(StatusOfOpen(file.get(), &status), path);
  if (result.ok()) result = CheckRegular(status, path);
  if (result.ok()) result = WriteAll(file.get(), bytes, path);
  return !result.ok() || SetEndOfFile(file.get()) != 0 ? result : LastSystemFailure(path);
}

Result FolderLock::Take(const std::string& path, std::unique_ptr<FolderLock>* lock) {
  std::string real;
  if (Result followed = FollowLinks(path, &real); !followed.ok()) return followed;
  const std::string folder = FolderOf(real);
  EntryStatus status;
  if (Result read = ReadTargetStatus(folder, &status); !read.ok()) return read;
  const std::wstring name = LockName(status.id);
  const auto deadline = std::chrono::steady_clock::now() + kLongestWait;
  for (DWORD pause = kShortestPause;; pause = std::min(pause * 2, kLongestPause)) {
    Handle held;
    const DWORD error = TryLock(name, &held);
    if (held.ok()) {
      lock->reset(new FolderLock(reinterpret_cast<std::intptr_t>(held.Release())));
      return Success();
    }
    if (error != ERROR_ALREADY_EXISTS) return ResultOf(error, folder);
    if (InterruptRequested()) return Failure(Code::kCancelled, folder, why::kInterrupted);
    if (std::chrono::steady_clock::now() > deadline)
      return Failure(Code::kFailed, folder, why::kSettingsHeld);
    Sleep(pause);
  }
}

FolderLock::~FolderLock() {
  CloseHandle(HandleFrom(handle_));
}

}  // namespace quendle::platform
