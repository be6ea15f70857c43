#include "platform/services/find_version.h"

#include <memory>

#include "platform/entries/input_file.h"
#include "platform/services/elf_version.h"
#include "platform/services/pe_version.h"

namespace quendle::platform {

std::optional<VersionNumbers> FindVersion(const ReadBytes& read) {
  const auto mark = read(0, 4);
  if (!mark) return std::nullopt;
  if (mark->starts_with("MZ")) return FindPeVersion(read);
  if (*mark ==
      "\x7F"
      "ELF")
    return FindElfVersion(read);
  return std::nullopt;
}

std::optional<VersionNumbers> FindVersionIn(const std::string& path) {
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
