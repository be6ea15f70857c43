// What a platform function answers when it can fail: nothing but success, or what failed, where and why.
//
// Public classes above this room keep their plain answers (a boolean, an empty string); they hold on to the
// last Result so that the terminal and the windows can say why.
#pragma once

#include <string>
#include <utility>

#include "reasons/reason.h"

namespace quendle::platform {

// Kinds of failure that callers act on; everything else is kFailed with its reason.
enum class Code {
  kOk,
  kNotFound,   // the path does not exist
  kExists,     // something of that name is there already and was not replaced
  kDenied,     // permissions, a read-only file system or, on Windows, another program that uses it
  kNoSpace,    // disk or quota full
  kIsFolder,   // a folder where a file is meant
  kNotFolder,  // a file where a folder is meant
  kCancelled,  // the user stopped the operation
  kRefused,    // the request makes no sense and nothing was tried
  kFailed,
};

struct [[nodiscard]] Result {
  Code code = Code::kOk;
  std::string path;  // the path it happened on, as bytes of the file system; may be empty
  Reason reason;

  bool ok() const { return code == Code::kOk; }
};

inline Result Success() {
  return {};
}

inline Result Failure(Code code, std::string path, Reason reason) {
  return {code, std::move(path), std::move(reason)};
}

}  // namespace quendle::platform
