// The blocks of RAR 5 and 7: what all of them have in common, and the numbers in them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "archive/modules/common/archive_input.h"
#include "archive/modules/rar/header_bytes.h"
#include "reasons/reason.h"

namespace quendle::modules {

// Numbers of seven bits a byte, the lowest first; the highest bit says that there is another byte.
//   0x05 ⇒ 5    0x85 0x01 ⇒ 133    0x80 0x80 0x00 ⇒ 0
class Rar5Numbers {
 public:
  explicit Rar5Numbers(std::string_view bytes) : bytes_(bytes) {}

  std::uint64_t Next();
  // Of that many bytes, the lowest first.
  std::uint64_t Fixed(std::size_t width);
  // So many bytes; empty when they are not all there.
  std::string Bytes(std::uint64_t count);
  // Bytes behind their number.
  std::string Text() { return Bytes(Next()); }
  // What is left.
  std::string_view Rest() const { return bytes_.substr(at_); }
  // Was there less than what was asked for, or a number of more than 64 bits?
  bool Failed() const { return failed_; }

 private:
  std::string_view bytes_;
  std::size_t at_ = 0;
  bool failed_ = false;
};

struct Rar5Block {
  enum Type : std::uint64_t { kMain = 1, kFile = 2, kService = 3, kEncryption = 4, kEnd = 5 };

  std::uint64_t type = 0;
  std::uint64_t flags = 0;
  std::string own;    // the fields of its type
  std::string extra;  // records behind them
  std::uint64_t content_position = 0;
  std::uint64_t content_size = 0;

  bool Has(std::uint64_t flag) const { return (flags & flag) != 0; }
  std::uint64_t End() const { return content_position + content_size; }
};

// Reads the block at that position, of which `header` gives headers; its content ends at `end` at most, and its
// header has `most` bytes at most. False, with the reason, for what is no block: it is cut off, or not as its
// checksum says.
bool ReadRar5Block(HeaderBytes* header, std::uint64_t position, std::uint64_t end, std::size_t most,
                   Rar5Block* block, Reason* problem);

}  // namespace quendle::modules
