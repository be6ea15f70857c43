#include <cerrno>
#include <limits>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/entries/descriptor_posix.h"
#include "platform/entries/entry_status_posix.h"
#include "platform/extraction/unfinished_file.h"
#include "platform/process/system_failure.h"

namespace quendle::platform {
namespace {

// Measured on ext4, setting space aside slows files of 1 MiB down, and no longer those of 4 MiB.
constexpr std::uint64_t kSetAsideFrom = 8U << 20;

}  // namespace

Result UnfinishedFile::SetAside(std::uint64_t size) {
  if (size < kSetAsideFrom || size > std::numeric_limits<off_t>::max()) return Success();
  if (Retried([&] { return fallocate(FdOf(file_), 0, 0, static_cast<off_t>(size)); }) == 0) {
    set_aside_ = size;
  } else if (errno == ENOSPC || errno == EDQUOT) {
    return LastSystemFailure(shown_);
  }
  return Success();  // whatever else prevented it, writing will show
}

Result UnfinishedFile::Write(std::string_view bytes) {
  if (!file_.ok()) return Failure(Code::kRefused, shown_, why::kCompleteAlready);
  while (!bytes.empty()) {
    const ssize_t n = Retried([&] { return write(FdOf(file_), bytes.data(), bytes.size()); });
    if (n < 0) return LastSystemFailure(shown_);
    bytes.remove_prefix(static_cast<std::size_t>(n));
    written_ += static_cast<std::uint64_t>(n);
  }
  return Success();
}

Result UnfinishedFile::Complete(const EntryAttributes& attributes) {
  if (!file_.ok()) return Success();
  if (set_aside_ > written_ &&
      Retried([&] { return ftruncate(FdOf(file_), static_cast<off_t>(written_)); }) != 0) {
    return LastSystemFailure(shown_);
  }
  struct stat status;
  if (fstat(FdOf(file_), &status) != 0) return LastSystemFailure(shown_);
  id_ = StatusFrom(status).id;
  // A mode or time that the file system cannot hold is no reason to lose the content.
  if (attributes.executable) {
    const mode_t mode = status.st_mode & (S_IRWXU | S_IRWXG | S_IRWXO);
    (void)!fchmod(FdOf(file_), mode | ((mode & (S_IRUSR | S_IRGRP | S_IROTH)) >> 2U));
  }
  if (attributes.write_time) {
    const timespec times[] = {{0, UTIME_OMIT}, SystemTime(ValidTime(*attributes.write_time))};
    (void)!futimens(FdOf(file_), times);
  }
  return file_.Close() ? Success() : LastSystemFailure(shown_);
}

}  // namespace quendle::platform
