#include "platform/services/file_version.h"
#include "platform/services/find_version.h"

#include "platform/services/version_record.h"
#include "platform/text/wide_win32.h"

namespace quendle::platform {
namespace {

std::optional<VersionNumbers> SystemsVersion(const std::string& path) {
  const std::wstring system_path = SystemPath(path);
  const DWORD size = GetFileVersionInfoSizeW(system_path.c_str(), nullptr);
  std::string resource(size, '\0');
  if (size == 0 || GetFileVersionInfoW(system_path.c_str(), 0, size, resource.data()) == 0)
    return std::nullopt;
  void* record = nullptr;
  UINT length = 0;
  if (VerQueryValueW(resource.data(), L"\\", &record, &length) == 0) return std::nullopt;
  return VersionOfRecord({static_cast<const char*>(record), length});
}

}  // namespace

// The system knows the version resource in every form it ever had, but nothing of the files of other systems.
std::optional<VersionNumbers> ReadFileVersion(const std::string& path) {
  const auto version = SystemsVersion(path);
  return version ? version : FindVersionIn(path);
}

}  // namespace quendle::platform
