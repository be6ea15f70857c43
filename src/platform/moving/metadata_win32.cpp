#include "platform/moving/metadata.h"

#include "platform/entries/entry_status_win32.h"
#include "platform/entries/nt_file_win32.h"
#include "platform/entries/streams_win32.h"

namespace quendle::platform {
namespace {

FILE_BASIC_INFO BasicFrom(const Transfer& transfer, const EntryStatus& recorded) {
  constexpr DWORD kKept = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM |
                          FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
  FILE_BASIC_INFO basic = {};
  if (transfer.moving) basic.CreationTime = SystemTime(recorded.birth_time);
  basic.LastAccessTime = SystemTime(recorded.access_time);
  basic.LastWriteTime = SystemTime(recorded.write_time);
  basic.FileAttributes = recorded.mode & kKept;
  if (basic.FileAttributes == 0) basic.FileAttributes = FILE_ATTRIBUTE_NORMAL;
  return basic;
}

// FAT knows no time before 1980, which is no reason to lose the content.
DWORD SetBasic(HANDLE entry, FILE_BASIC_INFO basic) {
  if (SetFileInformationByHandle(entry, FileBasicInfo, &basic, sizeof basic) != 0) return 0;
  if (GetLastError() != ERROR_INVALID_PARAMETER) return GetLastError();
  const DWORD attributes = basic.FileAttributes;
  basic = {};
  basic.FileAttributes = attributes;
  return SetFileInformationByHandle(entry, FileBasicInfo, &basic, sizeof basic) != 0 ? 0 : GetLastError();
}

}  // namespace

Result CopyMetadata(const Transfer& transfer, OpenEntry from, const EntryStatus& recorded, OpenEntry to) {
  Result result = CopyStreams(HandleFrom(from.handle), from.path, HandleFrom(to.handle), to.path);
  if (!result.ok()) return result;
  const FILE_BASIC_INFO basic = BasicFrom(transfer, recorded);
  DWORD error = SetBasic(HandleFrom(to.handle), basic);
  if (error == ERROR_ACCESS_DENIED) {  // a folder, which was opened for its entries only
    Handle opened;
    error = OpenBelow(HandleFrom(to.handle), L"", {.access = FILE_WRITE_ATTRIBUTES}, &opened);
    if (error == 0) error = SetBasic(opened.get(), basic);
  }
  return ResultOf(error, to.path);
}

Result CopyLinkMetadata(const Transfer& transfer, const EntryStatus& recorded, const OpenFolder& folder,
                        const std::string& name, const std::string& shown) {
  Handle link;
  DWORD error =
      OpenBelow(HandleFrom(folder.get()), WideFromText(name), {.access = FILE_WRITE_ATTRIBUTES}, &link);
  if (error == 0) error = SetBasic(link.get(), BasicFrom(transfer, recorded));
  return ResultOf(error, shown);
}

}  // namespace quendle::platform
