// The bytes of a ZIP archive, of which headers mostly stand one behind the other.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "archive/modules/common/archive_input.h"
#include "reasons/result.h"

namespace quendle::modules {

class ZipBytes {
 public:
  // `input` outlives the object. At least `block` bytes are read at a time.
  ZipBytes(const ArchiveInput& input, std::size_t block) : input_(input), block_(block) {}

  // The `size` bytes from `position` on, valid until the next call; fewer at the end of the input, and none when
  // they cannot be read.
  std::string_view At(std::uint64_t position, std::size_t size);

  std::uint64_t Size() const { return input_.Size(); }

  // Of all reads so far: the last failure.
  const platform::Result& result() const { return result_; }

 private:
  const ArchiveInput& input_;
  std::size_t block_;
  std::string buffer_;
  std::uint64_t begin_ = 0;  // of the buffer in the input
  platform::Result result_ = platform::Success();
};

}  // namespace quendle::modules
