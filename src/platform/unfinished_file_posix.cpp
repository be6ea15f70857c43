#include "platform/unfinished_file_posix.h"

#include <cerrno>
#include <limits>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace quendle::platform {
namespace {

// Measured on ext4, setting space aside slows files of 1 MiB down, and no longer those of 4 MiB.
constexpr std::uint64_t kSetAsideFrom = 8U << 20;

constexpr mode_t kMode = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;  // less the umask

}  // namespace

timespec SystemTime(const EntryTime& time) {
  // Archives hold anything; a wrong fraction would have the system refuse the whole time.
  const bool valid = time.nanoseconds >= 0 && time.nanoseconds < 1'000'000'000;
  return {time.seconds, valid ? time.nanoseconds : 0};
}

Result UnfinishedFile::Make(FolderHandle folder, const std::string& temporary_name, std::string shown,
                            std::unique_ptr<UnfinishedFile>* made) {
  Descriptor file(Retried([&] {
    return openat(folder->get(), temporary_name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kMode);
  }));
  if (!file.ok()) return LastSystemFailure(std::move(shown));
  made->reset(new UnfinishedFile(std::move(folder), temporary_name, std::move(shown), std::move(file)));
  return Success();
}

UnfinishedFile::UnfinishedFile(FolderHandle folder, std::string temporary_name, std::string shown,
                               Descriptor file)
    : folder_(std::move(folder)),
      temporary_name_(std::move(temporary_name)),
      shown_(std::move(shown)),
      file_(std::move(file)) {}

void UnfinishedFile::Clear() {
  if (!has_its_name_) unlinkat(folder_->get(), temporary_name_.c_str(), 0);
}

Result UnfinishedFile::SetAside(std::uint64_t size) {
  if (size < kSetAsideFrom || size > std::numeric_limits<off_t>::max()) return Success();
  if (Retried([&] { return fallocate(file_.get(), 0, 0, static_cast<off_t>(size)); }) == 0) {
    set_aside_ = size;
  } else if (errno == ENOSPC || errno == EDQUOT) {
    return LastSystemFailure(shown_);
  }
  return Success();  // whatever else prevented it, writing will show
}

Result UnfinishedFile::Write(std::string_view bytes) {
  if (!file_.ok()) return Failure(Code::kRefused, shown_, "the file is complete already");
  while (!bytes.empty()) {
    const ssize_t n = Retried([&] { return write(file_.get(), bytes.data(), bytes.size()); });
    if (n < 0) return LastSystemFailure(shown_);
    bytes.remove_prefix(static_cast<std::size_t>(n));
    written_ += static_cast<std::uint64_t>(n);
  }
  return Success();
}

Result UnfinishedFile::Complete(const EntryAttributes& attributes) {
  if (!file_.ok()) return Success();
  if (set_aside_ > written_ &&
      Retried([&] { return ftruncate(file_.get(), static_cast<off_t>(written_)); }) != 0) {
    return LastSystemFailure(shown_);
  }
  if (fstat(file_.get(), &status_) != 0) return LastSystemFailure(shown_);
  // A mode or time that the file system cannot hold is no reason to lose the content.
  if (attributes.executable) {
    const mode_t mode = status_.st_mode & (S_IRWXU | S_IRWXG | S_IRWXO);
    (void)!fchmod(file_.get(), mode | ((mode & (S_IRUSR | S_IRGRP | S_IROTH)) >> 2U));
  }
  if (attributes.write_time) {
    const timespec times[] = {{0, UTIME_OMIT}, SystemTime(*attributes.write_time)};
    (void)!futimens(file_.get(), times);
  }
  return file_.Close() ? Success() : LastSystemFailure(shown_);
}

}  // namespace quendle::platform
