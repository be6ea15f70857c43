#include <algorithm>
#include <utility>

#include "platform/entries/entry_status_win32.h"
#include "platform/entries/input_file.h"
#include "platform/entries/nt_file_win32.h"
#include "platform/process/system_failure.h"

namespace quendle::platform {

Result InputFile::Open(const std::string& path, std::unique_ptr<InputFile>* file) {
  // Others may go on working with it, as may whoever is to move it away. The flag is for folders, which could
  // not be told from files that may not be read.
  Handle opened(CreateFileW(SystemPath(path).c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING,
                            FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  if (!opened.ok()) return LastSystemFailure(path);
  if (GetFileType(opened.get()) != FILE_TYPE_DISK) {
    return Failure(Code::kRefused, path, why::kNotRegular);
  }
  EntryStatus status;
  if (const DWORD error = StatusOfOpen(opened.get(), &status); error != 0) return ResultOf(error, path);
  if (status.is_folder()) return Failure(Code::kIsFolder, path, why::kThisIsFolder);
  std::string identity;
  for (const auto part : {status.id.volume, status.id.high, status.id.low, status.size,
                          static_cast<std::uint64_t>(status.change_time.seconds),
                          static_cast<std::uint64_t>(status.change_time.nanoseconds)}) {
    identity.append(std::to_string(part)).append("/");
  }
  file->reset(new InputFile(path, reinterpret_cast<std::intptr_t>(opened.Release()), status.size,
                            std::move(identity)));
  return Success();
}

InputFile::InputFile(std::string path, std::intptr_t handle, std::uint64_t size, std::string identity)
    : path_(std::move(path)), handle_(handle), size_(size), identity_(std::move(identity)) {}

InputFile::~InputFile() {
  CloseHandle(HandleFrom(handle_));
}

Result InputFile::ReadAt(std::uint64_t position, void* buffer, std::size_t size, std::size_t* got) const {
  constexpr std::size_t kAtOnce = 1U << 30;
  *got = 0;
  while (*got < size) {
    const std::uint64_t from = position + *got;
    OVERLAPPED place = {};
    place.Offset = static_cast<DWORD>(from & 0xFFFFFFFF);
    place.OffsetHigh = static_cast<DWORD>(from >> 32);
    DWORD n = 0;
    if (ReadFile(HandleFrom(handle_), static_cast<char*>(buffer) + *got,
                 static_cast<DWORD>(std::min(size - *got, kAtOnce)), &n, &place) == 0) {
      if (GetLastError() == ERROR_HANDLE_EOF) break;
      return LastSystemFailure(path_);
    }
    if (n == 0) break;
    *got += n;
  }
  return Success();
}

}  // namespace quendle::platform
