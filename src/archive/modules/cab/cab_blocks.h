// The blocks of a cabinet's folder, unpacked one behind the other.
#pragma once

#include <libdeflate.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "archive/modules/cab/cab_directory.h"

namespace quendle::modules {

class CabBlocks {
 public:
  // What each block unpacks to, but for the last one of a folder, which may be smaller.
  static constexpr std::size_t kBlock = 32U << 10;
  // That is spoilt behind a block's place: with room to spare more of it is unpacked at full speed.
  static constexpr std::size_t kSlack = 512;

  // `input` outlives this object.
  explicit CabBlocks(const ArchiveInput& input);

  // Goes to the first block of the folder.
  void Begin(const CabFolder& folder);

  // Unpacks the next block to `to`, where there is room for kBlock + kSlack bytes. What the block before it gave stands in
  // front of `to`. How many bytes came; 0: Problem(), and nothing behind it can be had.
  std::size_t Next(char* to);

  const Reason& Problem() const { return problem_; }

 private:
  struct Free {
    void operator()(libdeflate_decompressor* decompressor) const {
      libdeflate_free_decompressor(decompressor);
    }
  };

  bool Read(char* bytes, std::size_t size);
  std::size_t Unpack(std::string_view packed, std::size_t size, char* to);
  std::size_t Inflate(std::size_t packed, char* to);
  std::size_t Fail(Reason reason);

  const ArchiveInput& input_;
  std::unique_ptr<libdeflate_decompressor, Free> decompressor_;
  CabFolder left_;            // of the folder
  bool has_history_ = false;  // a block came before
  bool had_last_ = false;     // a smaller block came
  std::vector<char> bytes_;   // packed, behind room for what the library is to know
  Reason problem_;
};

}  // namespace quendle::modules
