// What is in a cabinet of the usual kind, which needs no library to be unpacked.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "archive/modules/common/archive_input.h"
#include "archive/modules/common/entry_reader.h"

namespace quendle::modules {

// A row of blocks, in which contents lie behind each other.
struct CabFolder {
  std::uint64_t begin = 0;  // of the blocks in the input
  std::uint64_t end = 0;    // they cannot go further
  std::size_t blocks = 0;   // how many
  bool is_mszip = false;    // otherwise they are stored
};

struct CabFile {
  std::string name;          // raw
  std::size_t folder = 0;    // its number
  std::uint64_t offset = 0;  // in what the folder unpacks to
  std::uint64_t size = 0;
  std::uint32_t time = 0;        // as DOS has it
  std::uint32_t attributes = 0;  // as the format has them
};

struct CabDirectory {
  std::vector<CabFolder> folders;
  std::vector<CabFile> files;  // as their contents lie
};

// The directory of a cabinet that is one of its own and whole, stored or packed by MSZIP only, whose folders' data stand
// behind each other and whose files share no content. Nothing for any other.
std::optional<CabDirectory> ReadPlainCabinet(const ArchiveInput& input);

// `method` in the format's words.
Entry ToEntry(const CabFile& file, const char* method, const std::string& charset);

}  // namespace quendle::modules
