#include <algorithm>

#include "platform/entries/entry_status_win32.h"
#include "platform/entries/nt_file_win32.h"
#include "platform/extraction/unfinished_file.h"
#include "platform/process/system_failure.h"

namespace quendle::platform {
namespace {

// For small files it costs more than it saves.
constexpr std::uint64_t kSetAsideFrom = 8U << 20;

}  // namespace

// What is not used of it is free again when the file is closed.
Result UnfinishedFile::SetAside(std::uint64_t size) {
  FILE_ALLOCATION_INFO room;
  room.AllocationSize.QuadPart = static_cast<LONGLONG>(size);
  if (size < kSetAsideFrom || room.AllocationSize.QuadPart < 0) return Success();
  if (SetFileInformationByHandle(HandleFrom(file_.get()), FileAllocationInfo, &room, sizeof room) == 0) {
    Result result = LastSystemFailure(shown_);
    if (result.code == Code::kNoSpace) return result;
  }
  return Success();  // whatever else prevented it, writing will show
}

Result UnfinishedFile::Write(std::string_view bytes) {
  constexpr std::size_t kAtOnce = 1U << 30;
  if (!file_.ok()) return Failure(Code::kRefused, shown_, why::kCompleteAlready);
  while (!bytes.empty()) {
    const auto size = static_cast<DWORD>(std::min(bytes.size(), kAtOnce));
    DWORD n = 0;
    if (WriteFile(HandleFrom(file_.get()), bytes.data(), size, &n, nullptr) == 0)
      return LastSystemFailure(shown_);
    if (n == 0) return SystemFailure(ERROR_DISK_FULL, shown_);
    bytes.remove_prefix(n);
    written_ += n;
  }
  return Success();
}

Result UnfinishedFile::Complete(const EntryAttributes& attributes) {
  if (!file_.ok()) return Success();
  EntryStatus status;
  const DWORD error = StatusOfOpen(HandleFrom(file_.get()), &status);
  if (error != 0) return ResultOf(error, shown_);
  id_ = status.id;
  FILE_BASIC_INFO basic = {};
  // A time that the file system cannot hold is no reason to lose the content.
  if (attributes.write_time) basic.LastWriteTime = SystemTime(ValidTime(*attributes.write_time));
  (void)SetFileInformationByHandle(HandleFrom(file_.get()), FileBasicInfo, &basic, sizeof basic);
  return file_.Close() ? Success() : LastSystemFailure(shown_);
}

}  // namespace quendle::platform
