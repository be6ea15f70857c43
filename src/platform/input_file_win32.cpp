#include <algorithm>
#include <utility>

#include "platform/input_file.h"
#include "platform/wide_win32.h"

namespace quendle::platform {
namespace {

HANDLE HandleOf(std::intptr_t handle) {
  return reinterpret_cast<HANDLE>(handle);
}

std::uint64_t Joined(DWORD high, DWORD low) {
  return std::uint64_t{high} << 32 | low;
}

// The number of the file on its volume, which has more digits where a volume can hold more files.
std::string NumberOfFile(HANDLE file, const BY_HANDLE_FILE_INFORMATION& status) {
  FILE_ID_INFO id;
  if (GetFileInformationByHandleEx(file, FileIdInfo, &id, sizeof id) == 0) {
    return std::to_string(status.dwVolumeSerialNumber) + "/" +
           std::to_string(Joined(status.nFileIndexHigh, status.nFileIndexLow));
  }
  std::string number = std::to_string(id.VolumeSerialNumber);
  for (const unsigned byte : id.FileId.Identifier) number.append("/").append(std::to_string(byte));
  return number;
}

// Some file systems keep no time of change, only that of the last write.
std::uint64_t TimeOfChange(HANDLE file, const BY_HANDLE_FILE_INFORMATION& status) {
  FILE_BASIC_INFO times;
  if (GetFileInformationByHandleEx(file, FileBasicInfo, &times, sizeof times) != 0 &&
      times.ChangeTime.QuadPart != 0) {
    return static_cast<std::uint64_t>(times.ChangeTime.QuadPart);
  }
  return Joined(status.ftLastWriteTime.dwHighDateTime, status.ftLastWriteTime.dwLowDateTime);
}

}  // namespace

Result InputFile::Open(const std::string& path, std::unique_ptr<InputFile>* file) {
  // Others may go on working with it, as may whoever is to move it away. The flag is for folders, which could not be told
  // from files that may not be read.
  Handle opened(CreateFileW(SystemPath(path).c_str(), GENERIC_READ,
                            FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                            FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  if (!opened.ok()) return LastSystemFailure(path);
  if (GetFileType(opened.get()) != FILE_TYPE_DISK) {
    return Failure(Code::kRefused, path, "this is not a regular file");
  }
  BY_HANDLE_FILE_INFORMATION status;
  if (GetFileInformationByHandle(opened.get(), &status) == 0) return LastSystemFailure(path);
  if ((status.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
    return Failure(Code::kIsFolder, path, "this is a folder");
  }
  const std::uint64_t size = Joined(status.nFileSizeHigh, status.nFileSizeLow);
  std::string identity = NumberOfFile(opened.get(), status) + "/" + std::to_string(size) + "/" +
                         std::to_string(TimeOfChange(opened.get(), status));
  file->reset(
      new InputFile(path, reinterpret_cast<std::intptr_t>(opened.Release()), size, std::move(identity)));
  return Success();
}

InputFile::InputFile(std::string path, std::intptr_t handle, std::uint64_t size, std::string identity)
    : path_(std::move(path)), handle_(handle), size_(size), identity_(std::move(identity)) {}

InputFile::~InputFile() {
  CloseHandle(HandleOf(handle_));
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
    if (ReadFile(HandleOf(handle_), static_cast<char*>(buffer) + *got,
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
