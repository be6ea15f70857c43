#include "platform/entries/entry_status_win32.h"

#include <cstring>
#include <limits>

#include "platform/entries/link_win32.h"
#include "platform/entries/nt_file_win32.h"
#include "platform/entries/path_names.h"

namespace quendle::platform {
namespace {

constexpr std::int64_t kTicksPerSecond = 10'000'000;
constexpr std::int64_t kFirstSecond = -11'644'473'600;  // the year 1601

EntryStatus::Kind KindOf(HANDLE entry, DWORD attributes) {
  FILE_ATTRIBUTE_TAG_INFO tag = {};
  // Other kinds of reparse points have their content elsewhere, and the system reads it for everybody.
  const bool is_link = (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
                       GetFileInformationByHandleEx(entry, FileAttributeTagInfo, &tag, sizeof tag) != 0 &&
                       IsReparseTagNameSurrogate(tag.ReparseTag);
  if (is_link) return EntryStatus::Kind::kLink;
  if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return EntryStatus::Kind::kFolder;
  return GetFileType(entry) == FILE_TYPE_DISK ? EntryStatus::Kind::kFile : EntryStatus::Kind::kOther;
}

std::uint64_t Joined(DWORD high, DWORD low) {
  return std::uint64_t{high} << 32 | low;
}

bool ReadId(HANDLE entry, EntryId* id) {
  FILE_ID_INFO wide;
  if (GetFileInformationByHandleEx(entry, FileIdInfo, &wide, sizeof wide) != 0) {
    id->volume = wide.VolumeSerialNumber;
    std::memcpy(&id->low, wide.FileId.Identifier, sizeof id->low);
    std::memcpy(&id->high, wide.FileId.Identifier + sizeof id->low, sizeof id->high);
    return true;
  }
  BY_HANDLE_FILE_INFORMATION narrow;
  if (GetFileInformationByHandle(entry, &narrow) == 0) return false;
  *id = {narrow.dwVolumeSerialNumber, 0, Joined(narrow.nFileIndexHigh, narrow.nFileIndexLow)};
  return true;
}

Result StatusAt(const std::string& path, DWORD flags, EntryStatus* status) {
  const std::wstring wide = SystemPath(path);
  const Handle entry(CreateFileW(wide.c_str(), FILE_READ_ATTRIBUTES, kShareAll, nullptr, OPEN_EXISTING,
                                 FILE_FLAG_BACKUP_SEMANTICS | flags, nullptr));
  return ResultOf(entry.ok() ? StatusOfOpen(entry.get(), status) : NamingError(GetLastError(), wide), path);
}

}  // namespace

DWORD StatusOfOpen(HANDLE entry, EntryStatus* status) {
  FILE_BASIC_INFO basic;
  FILE_STANDARD_INFO standard;
  *status = {};
  if (GetFileInformationByHandleEx(entry, FileBasicInfo, &basic, sizeof basic) == 0 ||
      GetFileInformationByHandleEx(entry, FileStandardInfo, &standard, sizeof standard) == 0 ||
      !ReadId(entry, &status->id)) {
    return GetLastError();
  }
  status->kind = KindOf(entry, basic.FileAttributes);
  status->size = static_cast<std::uint64_t>(standard.EndOfFile.QuadPart);
  status->links = standard.NumberOfLinks;
  status->write_time = TimeFrom(basic.LastWriteTime);
  status->access_time = TimeFrom(basic.LastAccessTime);
  status->birth_time = TimeFrom(basic.CreationTime);
  // FAT keeps none.
  status->change_time = basic.ChangeTime.QuadPart == 0 ? status->write_time : TimeFrom(basic.ChangeTime);
  status->mode = basic.FileAttributes;
  status->has_holes = (basic.FileAttributes & FILE_ATTRIBUTE_SPARSE_FILE) != 0;
  return 0;
}

EntryTime TimeFrom(const LARGE_INTEGER& ticks) {
  const std::int64_t seconds = ticks.QuadPart / kTicksPerSecond;
  return {seconds + kFirstSecond, static_cast<std::int32_t>(ticks.QuadPart % kTicksPerSecond * 100)};
}

LARGE_INTEGER SystemTime(const EntryTime& time) {
  constexpr std::int64_t kMostSeconds = std::numeric_limits<std::int64_t>::max() / kTicksPerSecond - 1;
  LARGE_INTEGER ticks;
  const bool is_possible = time.seconds >= kFirstSecond && time.seconds < kMostSeconds + kFirstSecond;
  ticks.QuadPart = is_possible ? (time.seconds - kFirstSecond) * kTicksPerSecond + time.nanoseconds / 100 : 0;
  return ticks;
}

Result ReadStatus(const std::string& path, EntryStatus* status) {
  return StatusAt(path, FILE_FLAG_OPEN_REPARSE_POINT, status);
}

Result ReadTargetStatus(const std::string& path, EntryStatus* status) {
  return StatusAt(path, 0, status);
}

std::string LinkTarget(const std::string& path) {
  EntryStatus status;
  if (!ReadStatus(path, &status).ok() || !status.is_link()) return "";
  const Handle link(CreateFileW(SystemPath(path).c_str(), FILE_READ_ATTRIBUTES, kShareAll, nullptr,
                                OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT,
                                nullptr));
  std::string record;
  if (!link.ok() || ReadLinkRecord(link.get(), &record) != 0) return "";
  const auto target = SymbolicTarget(record);
  if (!target) return RealPath(path);  // of a junction
  const std::string text = TextFromWide(*target);
  const bool is_whole = text.starts_with('\\') || text.find(':') != std::string::npos;
  return is_whole ? text : PathBelow(FolderOf(path), text);
}

std::uint32_t CurrentUser() {
  return 0;
}

std::string RealPath(const std::string& path) {
  const Handle entry(CreateFileW(SystemPath(path).c_str(), FILE_READ_ATTRIBUTES, kShareAll, nullptr,
                                 OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  return entry.ok() ? TextFromSystemPath(FinalPath(entry.get())) : "";
}

}  // namespace quendle::platform
