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
  std::uint16_t crc = 0;
  // "/" where the header has byte FF, which is in no character; the folder in front of the name.
  std::string path;      // raw
  bool is_utf8 = false;  // the path
  std::string charset;   // of the path, if the header says it
  std::optional<platform::EntryTime> time;
  std::optional<std::uint32_t> unix_mode;
};

// The header at the position, with its checksums verified. Nothing when there is none, or it is damaged; also
// when the content that it announces ends behind the input, unless `may_be_cut`.
std::optional<LzhHeader> ReadLzhHeader(const ArchiveInput& input, std::uint64_t position, bool may_be_cut);

Entry ToEntry(const LzhHeader& header, const std::string& charset);

}  // namespace quendle::modules
