#include "platform/file_version.h"
#include "platform/version_record.h"

namespace quendle::platform {

std::optional<VersionNumbers> ReadFileVersion(const std::string& path) {
  return FindVersionIn(path);
}

}  // namespace quendle::platform
