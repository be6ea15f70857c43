#include "platform/services/file_version.h"
#include "platform/services/find_version.h"
#include "platform/services/version_record.h"

namespace quendle::platform {

std::optional<VersionNumbers> ReadFileVersion(const std::string& path) {
  return FindVersionIn(path);
}

}  // namespace quendle::platform
