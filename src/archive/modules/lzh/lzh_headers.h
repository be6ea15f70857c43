// The headers of LZH archives, of which there are four levels.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

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

// The header with which the bytes begin, its content's position counted from there. Nothing when there is none, or its
// checksums do not hold; `*needed`, unless null, is then how many bytes it takes at least to know more, or 0.
std::optional<LzhHeader> ParseLzhHeader(std::string_view bytes, std::size_t* needed = nullptr);

// The header at the position, of up to 1 MiB. What it announces may end behind the input.
std::optional<LzhHeader> ReadLzhHeader(const ArchiveInput& input, std::uint64_t position);

// Does a header seem to begin in these bytes, by the method in it?
// "\0\0-lh5-" ⇒ true, "-lh5-" ⇒ false, "\0\0-abc-" ⇒ false
bool HasLzhMethod(std::string_view bytes);

Entry ToEntry(const LzhHeader& header, const std::string& charset);

}  // namespace quendle::modules
