// The blocks of RAR 1.5 to 4: what all of them have in common, and their checksums.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "archive/modules/common/archive_input.h"
#include "archive/modules/common/little_endian.h"
#include "archive/modules/rar/header_bytes.h"
#include "reasons/reason.h"

namespace quendle::modules {

struct Rar4Block {
  enum Type : std::uint8_t {
    kMain = 0x73,
    kFile = 0x74,
    kOldComment = 0x75,
    kOldExtra = 0x76,
    kOldSub = 0x77,
    kOldSignature = 0x79,
    kService = 0x7A,
    kEnd = 0x7B
  };
  static constexpr std::size_t kSize = 7;       // what all begin with
  static constexpr std::size_t kFileSize = 32;  // of a file's, without name and options
  static constexpr std::size_t kMainSize = 13;

  std::string bytes;                   // of the header
  std::uint64_t content_position = 0;  // in the input
  std::uint64_t content_size = 0;

  std::uint64_t Number(std::size_t at, std::size_t width) const { return LittleEndian(bytes, at, width); }
  std::uint8_t TypeCode() const { return static_cast<std::uint8_t>(bytes[2]); }
  bool Has(std::uint64_t flag) const { return (Number(3, 2) & flag) != 0; }
  bool IsFile() const { return TypeCode() == kFile || TypeCode() == kService; }
  std::uint64_t End() const { return content_position + content_size; }

  // The parts of a file's header: its name, a salt, times.
  bool HasSalt() const { return Has(0x400); }
  bool HasTimes() const { return Has(0x1000); }
  std::size_t NamePosition() const { return kFileSize + (Has(0x100) ? 8 : 0); }
  std::size_t NameEnd() const { return NamePosition() + static_cast<std::size_t>(Number(26, 2)); }
  std::size_t TimesPosition() const { return NameEnd() + (HasSalt() ? 8 : 0); }
};

// Reads the block at that position of the input, of which `header` gives headers; its content ends at `end` at most.
// False, with the reason, for what is no block: it is cut off, of no known kind, or not as its checksum says.
bool ReadRar4Block(const ArchiveInput& input, HeaderBytes* header, std::uint64_t position, std::uint64_t end,
                   Rar4Block* block, Reason* problem);

}  // namespace quendle::modules
