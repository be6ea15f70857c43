#include "platform/entries/streams_win32.h"
#include "platform/process/system_failure.h"

#include <array>
#include <cstddef>
#include <string_view>
#include <vector>

#include "platform/entries/nt_file_win32.h"

namespace quendle::platform {
namespace {

constexpr std::wstring_view kContent = L"::$DATA";

// The names of the named ones; none where the file system knows no streams.
std::vector<std::wstring> StreamsOf(HANDLE file) {
  std::vector<std::wstring> names;
  std::vector<std::byte> buffer(4096);
  while (GetFileInformationByHandleEx(file, FileStreamInfo, buffer.data(),
                                      static_cast<DWORD>(buffer.size())) == 0) {
    if (GetLastError() != ERROR_MORE_DATA) return names;
    buffer.resize(buffer.size() * 2);
  }
  for (const std::byte* at = buffer.data();;) {
    const auto* stream = reinterpret_cast<const FILE_STREAM_INFO*>(at);
    const std::wstring_view name(stream->StreamName, stream->StreamNameLength / sizeof(wchar_t));
    if (!name.empty() && name != kContent) names.emplace_back(name);
    if (stream->NextEntryOffset == 0) return names;
    at += stream->NextEntryOffset;
  }
}

// A file system without streams takes the colon for a bad name.
bool MeansNoStreams(DWORD error) {
  return error == ERROR_INVALID_NAME || error == ERROR_INVALID_PARAMETER || error == ERROR_NOT_SUPPORTED ||
         error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

Result CopyData(HANDLE from, const std::string& from_path, HANDLE to, const std::string& to_path) {
  std::vector<char> buffer(64 << 10);
  for (;;) {
    DWORD got = 0;
    DWORD written = 0;
    if (ReadFile(from, buffer.data(), static_cast<DWORD>(buffer.size()), &got, nullptr) == 0)
      return LastSystemFailure(from_path);
    if (got == 0) return Success();
    if (WriteFile(to, buffer.data(), got, &written, nullptr) == 0) return LastSystemFailure(to_path);
    if (written != got) return SystemFailure(ERROR_DISK_FULL, to_path);
  }
}

}  // namespace

Result CopyStreams(HANDLE from, const std::string& from_path, HANDLE to, const std::string& to_path) {
  for (const std::wstring& name : StreamsOf(from)) {
    Handle in;
    Handle out;
    DWORD error = OpenStream(from, name, {.access = GENERIC_READ}, &in);
    if (error != 0) return ResultOf(error, from_path);
    error = OpenStream(to, name, {.access = GENERIC_WRITE, .makes = true}, &out);
    if (MeansNoStreams(error)) return Success();
    if (error != 0) return ResultOf(error, to_path);
    Result result = CopyData(in.get(), from_path, out.get(), to_path);
    if (!result.ok()) return result;
  }
  return Success();
}

}  // namespace quendle::platform
