// One entry of a ZIP archive, as its header in the central directory or the one before its content has it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "archive/modules/common/entry_reader.h"

namespace quendle::modules {

inline constexpr std::uint16_t kZipAes = 99;  // the method that stands for any other one, encrypted by AES
inline constexpr std::uint64_t kNowhere = UINT64_MAX;

struct ZipEntry {
  std::string name;  // the bytes in the header
  std::string
      unicode_name;      // UTF-8 from its extra field 0x7075 that takes the place of `name`, if there is one
  bool is_utf8 = false;  // `name`
  std::uint8_t aes_strength = 0;  // of the extra field 0x9901: 1, 2, 3 for 128, 192, 256 bits
  std::string
      strong_encryption;  // the extra field 0x0017 with its head, which says by what it is encrypted; or empty
  std::uint16_t aes_version = 0;  // 1: AE-1, 2: AE-2, which has no checksum; 0: there is no such field
  std::uint16_t made_by = 0;
  std::uint16_t flags = 0;
  std::uint16_t method = 0;
  std::uint16_t packed_method = 0;  // as the headers have it: kZipAes for any method that is encrypted by AES
  std::uint32_t dos_time = 0;
  std::uint32_t crc = 0;
  std::uint64_t packed_size = 0;
  std::uint64_t size = 0;
  std::uint32_t external_attributes = 0;
  std::uint64_t position = 0;  // of the local header in the input; kNowhere when that is not in it
  std::uint64_t directory_position =
      0;  // of the header in the directory; without one that of the local header
  std::optional<platform::EntryTime> time;

  bool IsEncrypted() const { return (flags & 1U) != 0; }
  // By the packer's own schemes with keys or certificates, and not by the password alone.
  bool IsStronglyEncrypted() const { return (flags & 1U << 6) != 0; }
  // The local header has zeros or counters in place of name, sizes and checksum, as the directory was encrypted.
  bool HasMaskedHeader() const { return (flags & 1U << 13) != 0; }
  // Sizes and checksum may stand behind the content, and zeros in the local header.
  bool HasDescriptor() const { return (flags & 1U << 3) != 0; }
};

// Headers have a part of fixed size, which says how long all of it is. `begin` are its first bytes; 0 when they
// are too few or no such header.
inline constexpr std::size_t kDirectoryHeaderSize = 46;
inline constexpr std::size_t kLocalHeaderSize = 30;
std::size_t DirectoryHeaderSize(std::string_view begin);
std::size_t LocalHeaderSize(std::string_view begin);

// Where the local header is, as the directory counts it.
struct ZipPlace {
  std::uint64_t volume = 0;
  std::uint64_t offset = 0;
};

// Parse a header of which all bytes are given, and fill all but the positions. False when a number that they
// leave to the extra field is not in it; it stays at its largest value then.
bool ParseDirectoryHeader(std::string_view header, ZipEntry* entry, ZipPlace* place);
bool ParseLocalHeader(std::string_view header, ZipEntry* entry);

// Do both describe the same content? Sizes and checksum count when `local` has them.
bool Agrees(const ZipEntry& local, const ZipEntry& entry, bool has_sizes);

// 8 ⇒ "deflate", 97 ⇒ "wavpack", 77 ⇒ "method 77".
std::string ZipMethodName(std::uint16_t method);

// All but the target of a link.
Entry ToEntry(const ZipEntry& zip, const std::string& charset);

}  // namespace quendle::modules
