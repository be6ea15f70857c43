#include "files/clsFileVer.h"

#include "platform/services/file_version.h"

namespace quendle {

void clsFileVer::pFileName(const std::string& path) {
  file_name_ = path;
  const auto version = platform::ReadFileVersion(path);
  if (!version) return;
  major_ = (*version)[0];
  minor_ = (*version)[1];
  revision_ = (*version)[2];
  build_ = (*version)[3];
}

std::string clsFileVer::pVersionFull() const {
  const auto version = platform::ReadFileVersion(file_name_);
  if (!version) return "";
  std::string text;
  for (const std::uint16_t number : *version) {
    text.append(text.empty() ? "" : ".").append(std::to_string(number));
  }
  return text;
}

}  // namespace quendle
