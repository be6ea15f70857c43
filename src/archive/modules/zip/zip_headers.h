// Headers of ZIP archives that are written for a library to read.
#pragma once

#include <cstdint>
#include <string>

#include "archive/modules/zip/zip_entry.h"

namespace quendle::modules {

// What the headers of an entry are to say otherwise than the archive does.
struct ZipHeaderForm {
  std::uint16_t flags = 0;
  std::string name = {};         // raw
  std::string extra = {};        // fields behind the one for sizes of 64 bits
  std::uint32_t attributes = 0;  // external, of Unix
  std::uint64_t position = 0;    // of the local header
};

void AppendDirectoryHeader(const ZipEntry& zip, const ZipHeaderForm& form, std::string* bytes);
void AppendLocalHeader(const ZipEntry& zip, const ZipHeaderForm& form, std::string* bytes);

// The end of an archive of which `bytes` from `begin` on are the directory, which stands at `position`.
void AppendZipEnd(std::uint64_t position, std::size_t count, std::size_t begin, std::string* bytes);

}  // namespace quendle::modules
