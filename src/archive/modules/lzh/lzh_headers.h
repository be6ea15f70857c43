// The headers of LZH archives, of which there are four levels.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "archive/modules/common/archive_input.h"
#include "archive/modules/common/entry_reader.h"

namespace quendle::modules {

struct LzhHeader {
  std::string method;  // "-lh5-"
  std::uint64_t content_position = 0;
  std::uint64_t packed_size = 0;
  std::uint64_t size = 0;
  std::optional<std::uint16_t> crc;  // of the content; the oldest packers gave none
  char system = 0;  // that it was packed on, as a letter: 'U' Unix, 'm' classic Mac OS ...; 0: unknown
  // "/" where the header has byte FF, which is in no character; the folder in front of the name.
  std::string path;      // raw
  bool is_utf8 = false;  // the path
  std::string charset;   // of the path, if the header says it
  std::optional<platform::EntryTime> time;
  std::optional<std::uint32_t> unix_mode;  // as Unix has it: OS-9 puts its own bits there
};

// What is looked for: the header of an entry, which may be up to 1 MiB and announce content that the input lacks; or
// a first one anywhere in a program. That has to announce content that is there, and no more than 4 KiB are read for
// it: most places that look like one are none, and there may be hundreds of thousands of them.
enum class HeaderPlace { kEntry, kInProgram };

// The header at the position, with its checksums verified. Nothing when there is none, or it is damaged.
std::optional<LzhHeader> ReadLzhHeader(const ArchiveInput& input, std::uint64_t position, HeaderPlace place);

Entry ToEntry(const LzhHeader& header, const std::string& charset);

}  // namespace quendle::modules
