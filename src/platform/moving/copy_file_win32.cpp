#include "platform/moving/copy_file.h"
#include "platform/process/system_failure.h"

#include <algorithm>

#include "platform/entries/entry_status_win32.h"
#include "platform/entries/nt_file_win32.h"
#include "platform/entries/streams_win32.h"

// It needs the system's header before it.
#include <winioctl.h>

namespace quendle::platform {
namespace {

constexpr std::uint64_t kBuffer = 1 << 20;  // small enough to cancel within a tenth of a second on slow disks
constexpr std::uint64_t kFlushStep = 32 << 20;  // less would keep the disk idle in between

HANDLE HandleOf(OpenEntry entry) {
  return HandleFrom(entry.handle);
}

class DataCopy {
 public:
  DataCopy(Transfer& transfer, OpenEntry from, OpenEntry to) : transfer_(transfer), from_(from), to_(to) {
    transfer_.buffer.resize(kBuffer);
  }

  Result Run(const EntryStatus& source) {
    if (source.has_holes) return CopySparse(source.size);
    FILE_ALLOCATION_INFO room;
    room.AllocationSize.QuadPart = static_cast<LONGLONG>(source.size);
    if (SetFileInformationByHandle(HandleOf(to_), FileAllocationInfo, &room, sizeof room) == 0 &&
        (GetLastError() == ERROR_DISK_FULL || GetLastError() == ERROR_HANDLE_DISK_FULL)) {
      return LastSystemFailure(to_.path);
    }
    return CopyRange(0, source.size);
  }

 private:
  Result Count(std::uint64_t bytes) {
    return transfer_.meter.AddBytes(bytes) ? Success() : Cancelled(from_.path);
  }

  // Only what is not a hole. A file system without that knowledge has its zeros copied.
  Result CopySparse(std::uint64_t size) {
    DWORD got = 0;
    (void)DeviceIoControl(HandleOf(to_), FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &got, nullptr);
    for (std::uint64_t position = 0; position < size;) {
      FILE_ALLOCATED_RANGE_BUFFER asked{};
      asked.FileOffset.QuadPart = static_cast<LONGLONG>(position);
      asked.Length.QuadPart = static_cast<LONGLONG>(size - position);
      FILE_ALLOCATED_RANGE_BUFFER range{};
      const BOOL known = DeviceIoControl(HandleOf(from_), FSCTL_QUERY_ALLOCATED_RANGES, &asked, sizeof asked,
                                         &range, sizeof range, &got, nullptr);
      if (known == 0 && GetLastError() != ERROR_MORE_DATA) return CopyRange(position, size);
      const std::uint64_t begin = got == 0 ? size : static_cast<std::uint64_t>(range.FileOffset.QuadPart);
      const std::uint64_t end = got == 0 ? size : begin + static_cast<std::uint64_t>(range.Length.QuadPart);
      Result result = Count(begin - position);
      if (result.ok()) result = CopyRange(begin, std::min(end, size));
      if (!result.ok()) return result;
      position = end;
    }
    FILE_END_OF_FILE_INFO file_end;
    file_end.EndOfFile.QuadPart = static_cast<LONGLONG>(size);
    const BOOL set = SetFileInformationByHandle(HandleOf(to_), FileEndOfFileInfo, &file_end, sizeof file_end);
    return set != 0 ? Success() : LastSystemFailure(to_.path);
  }

  Result CopyRange(std::uint64_t position, std::uint64_t end) {
    while (position < end) {
      DWORD copied = 0;
      Result result = ReadAndWrite(position, std::min(kBuffer, end - position), &copied);
      if (result.ok()) result = Count(copied);
      if (result.ok()) result = WriteBack(copied);
      if (!result.ok()) return result;
      position += copied;
    }
    return Success();
  }

  Result ReadAndWrite(std::uint64_t position, std::uint64_t bytes, DWORD* copied) {
    OVERLAPPED place = {};
    place.Offset = static_cast<DWORD>(position & 0xFFFFFFFF);
    place.OffsetHigh = static_cast<DWORD>(position >> 32);
    char* data = transfer_.buffer.data();
    const BOOL read = ReadFile(HandleOf(from_), data, static_cast<DWORD>(bytes), copied, &place);
    if (read == 0 && GetLastError() != ERROR_HANDLE_EOF) return LastSystemFailure(from_.path);
    if (*copied == 0) return SourceChanged(from_.path);  // it became shorter
    DWORD written = 0;
    if (WriteFile(HandleOf(to_), data, *copied, &written, &place) == 0) return LastSystemFailure(to_.path);
    return written == *copied ? Success() : SystemFailure(ERROR_DISK_FULL, to_.path);
  }

  // The final flush would otherwise write the whole file, and nobody be able to cancel.
  Result WriteBack(DWORD bytes) {
    if (!transfer_.moving || (unflushed_ += bytes) < kFlushStep) return Success();
    unflushed_ = 0;
    return FlushFileBuffers(HandleOf(to_)) != 0 ? Success() : LastSystemFailure(to_.path);
  }

  Transfer& transfer_;
  OpenEntry from_;
  OpenEntry to_;
  std::uint64_t unflushed_ = 0;
};

Result ReadStatusOf(OpenEntry entry, EntryStatus* status) {
  return ResultOf(StatusOfOpen(HandleOf(entry), status), entry.path);
}

Result CheckUnchanged(OpenEntry from, const EntryStatus& recorded) {
  EntryStatus now;
  Result result = ReadStatusOf(from, &now);
  return !result.ok() || IsUnchanged(recorded, now) ? result : SourceChanged(from.path);
}

// Nobody is to be able to read afterwards what only the user could before.
Result CheckEncryption(OpenEntry from, const EntryStatus& recorded, OpenEntry to) {
  if ((recorded.mode & FILE_ATTRIBUTE_ENCRYPTED) == 0) return Success();
  EntryStatus copy;
  Result result = ReadStatusOf(to, &copy);
  if (!result.ok() || (copy.mode & FILE_ATTRIBUTE_ENCRYPTED) != 0) return result;
  return Failure(Code::kRefused, from.path, why::kWouldBeDecrypted);
}

Result CheckSize(OpenEntry to, std::uint64_t size) {
  EntryStatus copy;
  Result result = ReadStatusOf(to, &copy);
  if (!result.ok() || copy.size == size) return result;
  return Failure(Code::kFailed, to.path, why::kOtherSize);
}

}  // namespace

// Files are written out one by one, since the system does that for no folder.
Result CopyFileContent(Transfer& transfer, OpenEntry from, const EntryStatus& recorded, OpenEntry to,
                       bool /*sync*/) {
  Result result = CheckUnchanged(from, recorded);
  if (result.ok()) result = CheckEncryption(from, recorded, to);
  if (result.ok()) result = DataCopy(transfer, from, to).Run(recorded);
  if (result.ok()) result = CheckSize(to, recorded.size);
  if (result.ok()) result = CopyMetadata(transfer, from, recorded, to);
  if (!result.ok()) return result;
  if (transfer.moving && FlushFileBuffers(HandleOf(to)) == 0) return LastSystemFailure(to.path);
  return CheckUnchanged(from, recorded);
}

Result SyncCopies(OpenEntry /*folder*/) {
  return Success();
}

}  // namespace quendle::platform
