#include <array>
#include <cstddef>
#include <utility>

#include "platform/entries/entry_status_win32.h"
#include "platform/entries/nt_file_win32.h"
#include "platform/entries/open_folder.h"
#include "platform/process/system_failure.h"

namespace quendle::platform {
namespace {

using Use = OpenFolder::Use;

ACCESS_MASK RightsFor(Use use) {
  return FILE_READ_ATTRIBUTES | SYNCHRONIZE | (use == Use::kList ? FILE_LIST_DIRECTORY : 0);
}

SystemHandle Taken(Handle handle) {
  return SystemHandle(reinterpret_cast<std::intptr_t>(handle.Release()));
}

// What is zero stays as it is.
DWORD SetBasics(HANDLE folder, const std::string& name, FILE_BASIC_INFO basic) {
  Handle entry;
  const DWORD error = OpenBelow(folder, WideFromText(name), {.access = FILE_WRITE_ATTRIBUTES}, &entry);
  if (error != 0) return error;
  return SetFileInformationByHandle(entry.get(), FileBasicInfo, &basic, sizeof basic) == 0 ? GetLastError()
                                                                                           : 0;
}

Result NoFolder(const std::string& path) {
  return Failure(Code::kNotFolder, path, why::kNoFolderInPlace);
}

// What was opened itself, which must be a folder. The content of some folders is elsewhere, and only shows
// when they are not opened themselves.
Result TakeFolder(Handle opened, Use use, const std::string& shown, SystemHandle* handle) {
  EntryStatus status;
  if (const DWORD error = StatusOfOpen(opened.get(), &status); error != 0) return ResultOf(error, shown);
  if (!status.is_folder()) return NoFolder(shown);
  if ((status.mode & FILE_ATTRIBUTE_REPARSE_POINT) != 0) {
    Handle followed;
    const NtOpening how{.access = RightsFor(use), .options = kOnlyFolders, .follows = true};
    if (const DWORD error = OpenBelow(opened.get(), L"", how, &followed); error != 0)
      return ResultOf(error, shown);
    opened = std::move(followed);
  }
  *handle = Taken(std::move(opened));
  return Success();
}

Handle OpenPath(const std::string& path, Use use, DWORD flags) {
  return Handle(CreateFileW(SystemPath(path).c_str(), RightsFor(use), kShareAll, nullptr, OPEN_EXISTING,
                            FILE_FLAG_BACKUP_SEMANTICS | flags, nullptr));
}

NtOpening Making(ACCESS_MASK access, ULONG options, NewEntry how) {
  const ULONG attributes = how.is_hidden ? FILE_ATTRIBUTE_HIDDEN : FILE_ATTRIBUTE_NORMAL;
  return {.access = access, .options = options, .makes = true, .attributes = attributes};
}

// An entry may be removable because its folder is, without any rights of its own but this one.
DWORD OpenForRemoval(HANDLE folder, const std::wstring& name, Handle* entry) {
  constexpr ACCESS_MASK kRemove = DELETE | FILE_READ_ATTRIBUTES;
  const DWORD error = OpenBelow(folder, name, {.access = kRemove | FILE_WRITE_ATTRIBUTES}, entry);
  return error == ERROR_ACCESS_DENIED ? OpenBelow(folder, name, {.access = kRemove}, entry) : error;
}

// A file that takes the place of a link to a folder, which the system does not replace. The link is back when
// that fails.
DWORD ReplaceFolderLink(HANDLE entry, HANDLE folder, const std::wstring& name) {
  const std::wstring aside = WideFromText(TemporaryPath(""));
  Handle link;
  DWORD error = OpenBelow(folder, name, {.access = DELETE | FILE_WRITE_ATTRIBUTES}, &link);
  if (error == 0) error = RenameOpen(link.get(), folder, aside, false);
  if (error != 0) return error;
  error = RenameOpen(entry, folder, name, false);
  if (error != 0) {
    (void)RenameOpen(link.get(), folder, name, false);
  } else {
    (void)RemoveOpen(link.get(), 0);
  }
  return error;
}

}  // namespace

bool SystemHandle::Close() {
  const std::intptr_t handle = std::exchange(handle_, kNone);
  return handle == kNone || CloseHandle(HandleFrom(handle)) != 0;
}

Result OpenFolder::Open(const std::string& path, std::string shown, Use use, OpenFolder* folder) {
  folder->shown_ = std::move(shown);
  Handle opened = OpenPath(path, use, 0);
  if (!opened.ok()) return LastSystemFailure(folder->shown_);
  return TakeFolder(std::move(opened), use, folder->shown_, &folder->handle_);
}

Result OpenFolder::OpenItself(const std::string& path, std::string shown, Use use, OpenFolder* folder) {
  folder->shown_ = std::move(shown);
  Handle opened = OpenPath(path, use, FILE_FLAG_OPEN_REPARSE_POINT);
  if (!opened.ok()) return LastSystemFailure(folder->shown_);
  return TakeFolder(std::move(opened), use, folder->shown_, &folder->handle_);
}

Result OpenFolder::Enter(const std::string& name, Use use, OpenFolder* folder) const {
  folder->shown_ = Shown(name);
  Handle opened;
  const NtOpening how{.access = RightsFor(use), .options = kOnlyFolders};
  const DWORD error = OpenBelow(HandleFrom(get()), WideFromText(name), how, &opened);
  if (error == ERROR_DIRECTORY) return NoFolder(folder->shown_);
  if (error != 0) return ResultOf(error, folder->shown_);
  return TakeFolder(std::move(opened), use, folder->shown_, &folder->handle_);
}

Result OpenFolder::Status(EntryStatus* status) const {
  return ResultOf(StatusOfOpen(HandleFrom(get()), status), shown_);
}

Result OpenFolder::StatusOf(const std::string& name, EntryStatus* status) const {
  Handle entry;
  DWORD error = OpenBelow(HandleFrom(get()), WideFromText(name), {}, &entry);
  if (error == 0) error = StatusOfOpen(entry.get(), status);
  return ResultOf(error, Shown(name));
}

Result OpenFolder::List(std::vector<std::string>* names) const {
  alignas(FILE_FULL_DIR_INFO) std::array<std::byte, 64 << 10> buffer;
  for (FILE_INFO_BY_HANDLE_CLASS kind = FileFullDirectoryRestartInfo;; kind = FileFullDirectoryInfo) {
    if (GetFileInformationByHandleEx(HandleFrom(get()), kind, buffer.data(), buffer.size()) == 0)
      return GetLastError() == ERROR_NO_MORE_FILES ? Success() : LastSystemFailure(shown_);
    for (const std::byte* at = buffer.data();;) {
      const auto* entry = reinterpret_cast<const FILE_FULL_DIR_INFO*>(at);
      const std::wstring_view name(entry->FileName, entry->FileNameLength / sizeof(wchar_t));
      if (name != L"." && name != L"..") names->push_back(TextFromWide(name));
      if (entry->NextEntryOffset == 0) break;
      at += entry->NextEntryOffset;
    }
  }
}

Result OpenFolder::CheckRemovable(const std::string& name, const EntryStatus& /*entry*/) const {
  Handle opened;
  return ResultOf(OpenBelow(HandleFrom(get()), WideFromText(name), {.access = DELETE}, &opened), Shown(name));
}

// Followed, since only so the content is read that is kept elsewhere: whoever copies it looks whether it is
// still the entry that is meant.
Result OpenFolder::OpenFile(const std::string& name, SystemHandle* file) const {
  constexpr ULONG kReadAhead = 0x4;  // FILE_SEQUENTIAL_ONLY
  Handle opened;
  const NtOpening how{.access = GENERIC_READ, .options = kOnlyFiles | kReadAhead, .follows = true};
  const DWORD error = OpenBelow(HandleFrom(get()), WideFromText(name), how, &opened);
  if (error == 0) *file = Taken(std::move(opened));
  return ResultOf(error, Shown(name));
}

Result OpenFolder::MakeFile(const std::string& name, NewEntry how, SystemHandle* file) const {
  Handle opened;
  const DWORD error = OpenBelow(HandleFrom(get()), WideFromText(name),
                                Making(GENERIC_READ | GENERIC_WRITE, kOnlyFiles, how), &opened);
  if (error == 0) *file = Taken(std::move(opened));
  return ResultOf(error, Shown(name));
}

Result OpenFolder::MakeFolder(const std::string& name, NewEntry how) const {
  Handle made;
  return ResultOf(OpenBelow(HandleFrom(get()), WideFromText(name),
                            Making(FILE_READ_ATTRIBUTES, kOnlyFolders, how), &made),
                  Shown(name));
}

Result OpenFolder::RemoveQuickly(const std::string& name) const {
  return Remove(name);
}

// Whether it is a folder shows only when it is open.
Result OpenFolder::Remove(const std::string& name) const {
  Handle entry;
  EntryStatus status;
  DWORD error = OpenForRemoval(HandleFrom(get()), WideFromText(name), &entry);
  if (error == 0) error = StatusOfOpen(entry.get(), &status);
  if (error == 0 && status.is_folder()) return Failure(Code::kIsFolder, Shown(name), why::kThisIsFolder);
  return ResultOf(error == 0 ? RemoveOpen(entry.get(), status.mode) : error, Shown(name));
}

Result OpenFolder::RemoveFolder(const std::string& name) const {
  Handle entry;
  EntryStatus status;
  DWORD error = OpenForRemoval(HandleFrom(get()), WideFromText(name), &entry);
  if (error == 0) error = StatusOfOpen(entry.get(), &status);
  if (error == 0 && !status.is_folder()) return NoFolder(Shown(name));
  return ResultOf(error == 0 ? RemoveOpen(entry.get(), status.mode) : error, Shown(name));
}

void OpenFolder::MakeAccessible(const std::string& /*name*/) const {}

int OpenFolder::Rename(const std::string& name, const OpenFolder& to, const std::string& new_name,
                       bool replace) const {
  const std::wstring wide = WideFromText(new_name);
  const HANDLE folder = HandleFrom(to.get());
  Handle entry;
  EntryStatus taken;
  DWORD error = OpenBelow(HandleFrom(get()), WideFromText(name), {.access = DELETE}, &entry);
  if (error == 0 && replace && to.StatusOf(new_name, &taken).ok() &&
      (taken.mode & FILE_ATTRIBUTE_DIRECTORY) != 0) {
    // An empty folder would be replaced without a question.
    error = taken.is_folder() ? ERROR_ALREADY_EXISTS : ReplaceFolderLink(entry.get(), folder, wide);
  } else if (error == 0) {
    error = RenameOpen(entry.get(), folder, wide, replace);
  }
  return static_cast<int>(error);
}

void OpenFolder::SetWriteTime(const std::string& name, const EntryTime& time) const {
  FILE_BASIC_INFO basic = {};
  basic.LastWriteTime = SystemTime(time);
  (void)SetBasics(HandleFrom(get()), name, basic);
}

Result OpenFolder::Unhide(const std::string& name) const {
  FILE_BASIC_INFO basic = {};
  basic.FileAttributes = FILE_ATTRIBUTE_ARCHIVE;
  return ResultOf(SetBasics(HandleFrom(get()), name, basic), Shown(name));
}

Result OpenFolder::FreeBytes(std::optional<std::uint64_t>* bytes) const {
  ULARGE_INTEGER free;
  if (GetDiskFreeSpaceExW((FinalPath(HandleFrom(get())) + L'\\').c_str(), &free, nullptr, nullptr) == 0)
    return LastSystemFailure(shown_);
  *bytes = free.QuadPart;
  return Success();
}

}  // namespace quendle::platform
