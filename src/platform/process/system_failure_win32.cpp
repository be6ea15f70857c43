#include <iterator>

#include "platform/process/system_failure.h"
#include "platform/text/wide_win32.h"

namespace quendle::platform {
namespace {

// Not in every system's header.
constexpr DWORD kElevationRequired = 740;
constexpr DWORD kDiskQuotaExceeded = 1295;

Code CodeOf(DWORD error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_DRIVE:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
    case ERROR_MOD_NOT_FOUND:
      return Code::kNotFound;
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
    case ERROR_DIR_NOT_EMPTY:
      return Code::kExists;
    case ERROR_ACCESS_DENIED:
    case ERROR_NETWORK_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_WRITE_PROTECT:
    case ERROR_DELETE_PENDING:
    case ERROR_PRIVILEGE_NOT_HELD:
    case kElevationRequired:
      return Code::kDenied;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
    case kDiskQuotaExceeded:
      return Code::kNoSpace;
    case ERROR_DIRECTORY:
      return Code::kNotFolder;
    case ERROR_CANCELLED:
    case ERROR_OPERATION_ABORTED:
    case ERROR_REQUEST_ABORTED:
      return Code::kCancelled;
    default:
      return Code::kFailed;
  }
}

// English as all reasons are, else in whatever language the system has.
std::wstring SystemWords(DWORD error) {
  wchar_t words[1024];
  for (const DWORD language : {DWORD{MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US)}, DWORD{0}}) {
    const DWORD length =
        FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, language,
                       words, static_cast<DWORD>(std::size(words)), nullptr);
    if (length > 0) return {words, length};
  }
  return L"the system's error " + std::to_wstring(error);
}

// One line without a full stop; what the system would fill in is not known here.
std::string OneLine(std::wstring words) {
  constexpr std::wstring_view kPlaceholder = L"%1";
  for (wchar_t& unit : words) {
    if (unit < L' ') unit = L' ';
  }
  words.erase(words.find_last_not_of(L" .") + 1);
  if (const std::size_t at = words.find(kPlaceholder); at != std::wstring::npos) {
    words.replace(at, kPlaceholder.size(), L"the file");
  }
  return TextFromWide(words);
}

Reason ReasonOf(DWORD error) {
  const std::string words = OneLine(SystemWords(error));
  switch (error) {
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
      return why::kInUse;
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
      return why::kNotFound(words);
    case ERROR_ACCESS_DENIED:
      return why::kAccessDenied(words);
    case ERROR_PRIVILEGE_NOT_HELD:
    case kElevationRequired:
      return why::kNotPermitted(words);
    case ERROR_WRITE_PROTECT:
      return why::kReadOnly(words);
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
      return why::kDiskFull(words);
    case kDiskQuotaExceeded:
      return why::kQuotaExceeded(words);
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
      return why::kExists(words);
    case ERROR_DIRECTORY:
      return why::kNotFolder(words);
    case ERROR_DIR_NOT_EMPTY:
      return why::kFolderNotEmpty(words);
    case ERROR_FILENAME_EXCED_RANGE:
      return why::kSystemNameTooLong(words);
    case ERROR_CRC:
    case ERROR_IO_DEVICE:
      return why::kInputOutputError(words);
    case ERROR_NOT_ENOUGH_MEMORY:
    case ERROR_OUTOFMEMORY:
      return why::kNoMemory(words);
    case ERROR_NOT_READY:
      return why::kNoDevice(words);
    case ERROR_NOT_SUPPORTED:
    case ERROR_INVALID_PARAMETER:
    case ERROR_INVALID_NAME:
      return why::kNotSupported(words);
    default:
      return Reason(words);
  }
}

}  // namespace

Result SystemFailure(int error, std::string path) {
  const auto code = static_cast<DWORD>(error);
  return {CodeOf(code), std::move(path), ReasonOf(code)};
}

Result LastSystemFailure(std::string path) {
  return SystemFailure(static_cast<int>(GetLastError()), std::move(path));
}

}  // namespace quendle::platform
