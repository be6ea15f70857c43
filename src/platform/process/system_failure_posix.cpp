#include <cerrno>
#include <cstring>

#include "platform/process/system_failure.h"

namespace quendle::platform {
namespace {

Code CodeOf(int error) {
  switch (error) {
    case ENOENT:
      return Code::kNotFound;
    case EEXIST:
    case ENOTEMPTY:
      return Code::kExists;
    case EACCES:
    case EPERM:
    case EROFS:
      return Code::kDenied;
    case ENOSPC:
    case EDQUOT:
      return Code::kNoSpace;
    case EISDIR:
      return Code::kIsFolder;
    case ENOTDIR:
      return Code::kNotFolder;
    case ECANCELED:
      return Code::kCancelled;
    default:
      return Code::kFailed;
  }
}

Reason ReasonOf(int error) {
  const char* const words = std::strerror(error);
  switch (error) {
    case ENOENT:
    case ESTALE:
      return why::kNotFound(words);
    case EACCES:
      return why::kAccessDenied(words);
    case EPERM:
      return why::kNotPermitted(words);
    case EROFS:
      return why::kReadOnly(words);
    case ENOSPC:
      return why::kDiskFull(words);
    case EDQUOT:
      return why::kQuotaExceeded(words);
    case EEXIST:
      return why::kExists(words);
    case ENOTEMPTY:
      return why::kFolderNotEmpty(words);
    case EISDIR:
      return why::kIsFolder(words);
    case ENOTDIR:
      return why::kNotFolder(words);
    case ENAMETOOLONG:
      return why::kSystemNameTooLong(words);
    case EFBIG:
      return why::kSystemFileTooLarge(words);
    case EIO:
      return why::kInputOutputError(words);
    case EBUSY:
    case ETXTBSY:
      return why::kBusy(words);
    case ELOOP:
      return why::kTooManyLinks(words);
    case ENOMEM:
      return why::kNoMemory(words);
    case ENODEV:
    case ENXIO:
    case ENOTCONN:
      return why::kNoDevice(words);
    case EOPNOTSUPP:
    case EINVAL:
      return why::kNotSupported(words);
    default:
      return Reason(words);
  }
}

}  // namespace

Result SystemFailure(int error, std::string path) {
  return {CodeOf(error), std::move(path), ReasonOf(error)};
}

Result LastSystemFailure(std::string path) {
  return SystemFailure(errno, std::move(path));
}

}  // namespace quendle::platform
