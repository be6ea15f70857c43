#include "platform/moving/copy_file.h"
#include "platform/process/system_failure.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "platform/entries/descriptor_posix.h"
#include "platform/entries/entry_status_posix.h"

namespace quendle::platform {
namespace {

constexpr off_t kChunk = 2 << 20;     // small enough to cancel within a tenth of a second on slow disks
constexpr off_t kBuffer = 256 << 10;  // for reading and writing; more only costs cache
constexpr off_t kWriteBackStep = 4 << 20;
constexpr off_t kWriteBackAhead = 64 << 20;  // enough to keep any disk busy

int FdOf(OpenEntry entry) {
  return static_cast<int>(entry.handle);
}

class DataCopy {
 public:
  DataCopy(Transfer& transfer, OpenEntry from, OpenEntry to, bool sync)
      : transfer_(transfer), from_{FdOf(from), from.path}, to_{FdOf(to), to.path}, sync_(sync) {}

  Result Run(const EntryStatus& source) {
    const auto size = static_cast<off_t>(source.size);
    if (size > 0 && transfer_.can_clone) {
      if (ioctl(to_.fd, FICLONE, from_.fd) == 0) return Count(size);
      transfer_.can_clone = false;
    }
    Result result = source.has_holes ? CopySparse(size) : CopyRange(0, size);
    return result.ok() && transfer_.moving ? FinishWriteBack(size) : result;
  }

 private:
  Result Count(off_t bytes) {
    return transfer_.meter.AddBytes(static_cast<std::uint64_t>(bytes)) ? Success() : Cancelled(from_.path);
  }

  // Only what is not a hole. A file system without that knowledge calls everything data.
  Result CopySparse(off_t size) {
    for (off_t position = 0; position < size;) {
      off_t begin = lseek(from_.fd, position, SEEK_DATA);
      if (begin < 0) begin = errno == ENXIO ? size : position;
      off_t end = begin < size ? lseek(from_.fd, begin, SEEK_HOLE) : size;
      if (end < 0) end = size;
      begin = std::min(begin, size);
      end = std::min(end, size);
      Result result = Count(begin - position);
      if (result.ok()) result = CopyRange(begin, end);
      if (!result.ok()) return result;
      position = end;
    }
    return ftruncate(to_.fd, size) == 0 ? Success() : LastSystemFailure(to_.path);
  }

  Result CopyRange(off_t position, off_t end) {
    while (position < end) {
      off_t copied = 0;
      Result result = CopyChunk(position, std::min(kChunk, end - position), &copied);
      if (result.ok()) result = Count(copied);
      if (!result.ok()) return result;
      position += copied;
      WriteBack(position);
    }
    return Success();
  }

  Result CopyChunk(off_t position, off_t bytes, off_t* copied) {
    if (transfer_.can_copy_range) {
      off_t in = position;
      off_t out = position;
      const ssize_t n = Retried(
          [&] { return copy_file_range(from_.fd, &in, to_.fd, &out, static_cast<std::size_t>(bytes), 0); });
      if (n > 0) {
        *copied = n;
        return Success();
      }
      // It fails, or claims the end of the file, for many reasons of its own; reading and writing tell the
      // real one.
      transfer_.can_copy_range = false;
    }
    return ReadAndWrite(position, std::min(bytes, kBuffer), copied);
  }

  Result ReadAndWrite(off_t position, off_t bytes, off_t* copied) {
    transfer_.buffer.resize(kBuffer);
    char* data = transfer_.buffer.data();
    const ssize_t got =
        Retried([&] { return pread(from_.fd, data, static_cast<std::size_t>(bytes), position); });
    if (got < 0) return LastSystemFailure(from_.path);
    if (got == 0) return SourceChanged(from_.path);  // it became shorter
    for (ssize_t written = 0; written < got;) {
      const ssize_t n = Retried([&] {
        return pwrite(to_.fd, data + written, static_cast<std::size_t>(got - written), position + written);
      });
      if (n < 0) return LastSystemFailure(to_.path);
      if (n == 0) return SystemFailure(EIO, to_.path);
      written += n;
    }
    *copied = got;
    return Success();
  }

  // The final sync would otherwise write the whole file, with the disk idle until then and nobody able to
  // cancel.
  void WriteBack(off_t position) {
    if (!transfer_.moving || position - started_ < kWriteBackStep) return;
    sync_file_range(to_.fd, started_, position - started_, SYNC_FILE_RANGE_WRITE);
    started_ = position;
    const off_t due = position - kWriteBackAhead;
    if (due <= finished_) return;
    sync_file_range(to_.fd, finished_, due - finished_, SYNC_FILE_RANGE_WAIT_BEFORE);
    finished_ = due;
  }

  // What is still on its way, step by step, so that the user sees that it goes on and can cancel it: the sync
  // behind it has little to wait for then. The files of a folder, which may be thousands, do not wait for the
  // disk one by one.
  Result FinishWriteBack(off_t size) {
    constexpr off_t kToTheEnd = 0;
    sync_file_range(to_.fd, started_, kToTheEnd, SYNC_FILE_RANGE_WRITE);
    for (; sync_ && finished_ < size; finished_ += kWriteBackStep) {
      sync_file_range(to_.fd, finished_, kWriteBackStep, SYNC_FILE_RANGE_WAIT_BEFORE);
      if (!transfer_.meter.Tick()) return Cancelled(from_.path);
    }
    return Success();
  }

  struct Side {
    int fd;
    const std::string& path;
  };

  Transfer& transfer_;
  Side from_;
  Side to_;
  bool sync_;
  off_t started_ = 0;   // up to where data is on its way to the disk
  off_t finished_ = 0;  // up to where it has arrived
};

// Files of the kernel have a size of 0 and content nevertheless.
Result CheckEmpty(OpenEntry from) {
  char byte;
  const ssize_t n = Retried([&] { return pread(FdOf(from), &byte, 1, 0); });
  if (n < 0) return LastSystemFailure(from.path);
  return n == 0 ? Success() : Failure(Code::kFailed, from.path, why::kSizeUnknown);
}

Result CheckUnchanged(OpenEntry from, const EntryStatus& recorded) {
  struct stat now;
  if (fstat(FdOf(from), &now) != 0) return LastSystemFailure(from.path);
  return IsUnchanged(recorded, StatusFrom(now)) ? Success() : SourceChanged(from.path);
}

Result CheckSize(OpenEntry to, std::uint64_t size) {
  struct stat copy;
  if (fstat(FdOf(to), &copy) != 0) return LastSystemFailure(to.path);
  if (static_cast<std::uint64_t>(copy.st_size) == size) return Success();
  return Failure(Code::kFailed, to.path, why::kOtherSize);
}

}  // namespace

Result CopyFileContent(Transfer& transfer, OpenEntry from, const EntryStatus& recorded, OpenEntry to,
                       bool sync) {
  Result result = CheckUnchanged(from, recorded);
  if (result.ok())
    result = recorded.size == 0 ? CheckEmpty(from) : DataCopy(transfer, from, to, sync).Run(recorded);
  if (result.ok()) result = CheckSize(to, recorded.size);
  if (result.ok()) result = CopyMetadata(transfer, from, recorded, to);
  if (!result.ok()) return result;
  if (sync && Retried([&] { return fsync(FdOf(to)); }) != 0) return LastSystemFailure(to.path);
  return CheckUnchanged(from, recorded);
}

Result SyncCopies(OpenEntry folder) {
  // Once for everything: a sync of each file would take minutes for thousands of them.
  return syncfs(FdOf(folder)) == 0 ? Success() : LastSystemFailure(folder.path);
}

}  // namespace quendle::platform
