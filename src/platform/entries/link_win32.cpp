#include "platform/entries/link_win32.h"
#include "platform/process/system_failure.h"

#include <algorithm>
#include <cstring>

#include "platform/entries/entry_status_win32.h"
#include "platform/entries/nt_file_win32.h"
#include "platform/entries/open_folder.h"

// They need the system's header before them.
#include <winioctl.h>

namespace quendle::platform {
namespace {

// Where the beginning of a symbolic link's record has what; the names follow it.
struct SymbolicRecord {
  ULONG tag;
  USHORT data_bytes;
  USHORT reserved;
  USHORT target_begin;  // of the target as the system takes it
  USHORT target_bytes;
  USHORT shown_begin;  // and as it is shown
  USHORT shown_bytes;
  ULONG flags;
};

DWORD WriteLinkRecord(HANDLE entry, std::string_view record) {
  DWORD size = 0;
  const BOOL written = DeviceIoControl(entry, FSCTL_SET_REPARSE_POINT, const_cast<char*>(record.data()),
                                       static_cast<DWORD>(record.size()), nullptr, 0, &size, nullptr);
  return written != 0 ? 0 : GetLastError();
}

DWORD MakeSymbolicLink(const std::wstring& path, const std::wstring& target, bool to_folder) {
  constexpr DWORD kUnprivileged = 0x2;  // for whoever has turned the developer mode on
  const DWORD flags = to_folder ? SYMBOLIC_LINK_FLAG_DIRECTORY : 0;
  if (CreateSymbolicLinkW(path.c_str(), target.c_str(), flags | kUnprivileged) != 0) return 0;
  if (GetLastError() != ERROR_INVALID_PARAMETER) return GetLastError();
  return CreateSymbolicLinkW(path.c_str(), target.c_str(), flags) != 0 ? 0 : GetLastError();
}

Result MakeSymbolicLink(const OpenFolder& folder, const std::string& name, const std::wstring& target,
                        bool to_folder) {
  const std::wstring path = FinalPath(HandleFrom(folder.get())) + L'\\' + WideFromText(name);
  if (const DWORD error = MakeSymbolicLink(path, target, to_folder); error != 0)
    return ResultOf(error, folder.Shown(name));
  // Wine claims to have made one.
  EntryStatus status;
  if (folder.StatusOf(name, &status).ok() && status.is_link()) return Success();
  return Failure(Code::kFailed, folder.Shown(name), why::kNoLinksHere);
}

}  // namespace

DWORD ReadLinkRecord(HANDLE link, std::string* record) {
  record->resize(MAXIMUM_REPARSE_DATA_BUFFER_SIZE);
  DWORD size = 0;
  const BOOL read = DeviceIoControl(link, FSCTL_GET_REPARSE_POINT, nullptr, 0, record->data(),
                                    static_cast<DWORD>(record->size()), &size, nullptr);
  const DWORD error = read != 0 ? 0 : GetLastError();
  record->resize(error == 0 ? size : 0);
  return error;
}

std::optional<std::wstring> SymbolicTarget(std::string_view record) {
  SymbolicRecord symbolic;
  if (record.size() < sizeof symbolic) return std::nullopt;
  std::memcpy(&symbolic, record.data(), sizeof symbolic);
  if (symbolic.tag != IO_REPARSE_TAG_SYMLINK) return std::nullopt;
  record.remove_prefix(sizeof symbolic);
  const std::size_t begin = symbolic.shown_begin;
  const std::size_t size = symbolic.shown_bytes;
  if (size == 0 || begin + size > record.size()) return std::nullopt;
  std::wstring target(size / sizeof(wchar_t), L'\0');
  std::memcpy(target.data(), record.data() + begin, target.size() * sizeof(wchar_t));
  return target;
}

Result OpenFolder::MakeLink(const std::string& name, const std::string& target) const {
  std::string native = target;
  std::replace(native.begin(), native.end(), '/', '\\');
  const std::string folder = TextFromSystemPath(FinalPath(HandleFrom(get())));
  EntryStatus status;
  const bool to_folder = ReadTargetStatus(PathBelow(folder, native), &status).ok() && status.is_folder();
  return MakeSymbolicLink(*this, name, WideFromText(native), to_folder);
}

Result OpenFolder::ReadLink(const std::string& name, const EntryStatus& recorded,
                            std::string* content) const {
  Handle link;
  EntryStatus now;
  DWORD error = OpenBelow(HandleFrom(get()), WideFromText(name), {}, &link);
  if (error == 0) error = ReadLinkRecord(link.get(), content);
  if (error == 0) error = StatusOfOpen(link.get(), &now);
  if (error != 0) return ResultOf(error, Shown(name));
  return IsUnchanged(recorded, now) ? Success() : SourceChanged(Shown(name));
}

Result OpenFolder::MakeLinkLike(const std::string& name, const std::string& content,
                                const EntryStatus& recorded) const {
  const std::wstring wide = WideFromText(name);
  const HANDLE folder = HandleFrom(get());
  const bool is_folder = (recorded.mode & FILE_ATTRIBUTE_DIRECTORY) != 0;
  // The only way for users without the privilege.
  if (const auto target = SymbolicTarget(content)) return MakeSymbolicLink(*this, name, *target, is_folder);
  Handle made;
  const NtOpening how{
      .access = GENERIC_WRITE | DELETE, .options = is_folder ? kOnlyFolders : kOnlyFiles, .makes = true};
  DWORD error = OpenBelow(folder, wide, how, &made);
  if (error != 0) return ResultOf(error, Shown(name));
  error = WriteLinkRecord(made.get(), content);
  if (error != 0) (void)RemoveOpen(made.get(), 0);
  return ResultOf(error, Shown(name));
}

Result OpenFolder::MakeHardLink(const std::string& path, const std::string& name) const {
  const Handle file(CreateFileW(SystemPath(path).c_str(), FILE_WRITE_ATTRIBUTES, kShareAll, nullptr,
                                OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
  if (!file.ok()) return LastSystemFailure(Shown(name));
  return ResultOf(LinkOpen(file.get(), HandleFrom(get()), WideFromText(name)), Shown(name));
}

}  // namespace quendle::platform
