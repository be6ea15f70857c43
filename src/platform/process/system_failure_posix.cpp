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

}  // namespace

Result SystemFailure(int error, std::string path) {
  return {CodeOf(error), std::move(path), std::strerror(error)};
}

Result LastSystemFailure(std::string path) {
  return SystemFailure(errno, std::move(path));
}

}  // namespace quendle::platform
