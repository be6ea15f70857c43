#include "platform/file_version.h"

#include "platform/input_file.h"
#include "platform/version_record.h"

namespace quendle::platform {

std::optional<VersionNumbers> ReadFileVersion(const std::string& path) {
  std::unique_ptr<InputFile> file;
  if (!InputFile::Open(path, &file).ok()) return std::nullopt;
  return FindVersion([&file](std::uint64_t position, std::size_t size) -> std::optional<std::string> {
    // Sizes come from the file: nothing is allocated for what it does not hold.
    if (position > file->Size() || size > file->Size() - position) return std::nullopt;
    std::string bytes(size, '\0');
    std::size_t got = 0;
    if (!file->ReadAt(position, bytes.data(), size, &got).ok() || got != size) return std::nullopt;
    return bytes;
  });
}

}  // namespace quendle::platform
