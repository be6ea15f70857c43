// What RAR 2.9 to 4 packed (versions 29 and 36 of entries): blocks of matches and literals, or of PPM.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>

#include "archive/modules/lz/huffman_code.h"
#include "archive/modules/rar/unpack/filter_programs.h"
#include "archive/modules/rar/unpack/ppm_model.h"
#include "archive/modules/rar/unpack/range_decoder.h"
#include "archive/modules/rar/unpack/unpacker.h"

namespace quendle::modules {

class Unpack29 final : public Unpacker {
 public:
  Unpack29() { Forget(); }

 protected:
  void BeginEntry(const PackedEntry& entry) override;
  Step Decode(std::uint64_t until) override;

 private:
  enum class Block { kNone, kLz, kPpm };

  static constexpr std::size_t kMainSymbols = 299;
  static constexpr std::size_t kDistanceSymbols = 60;
  static constexpr std::size_t kLowDistanceSymbols = 17;
  static constexpr std::size_t kRepeatedLengthSymbols = 28;

  void Forget();
  Step BeginBlock();

  bool ReadCodes();
  Step DecodeLz(std::uint64_t until);
  Step EndLzBlock();
  bool DecodeMatch(unsigned symbol);
  bool DecodeRepeatedDistance(unsigned age);
  std::uint32_t DecodeDistance();
  bool CopyFrom(std::uint32_t distance, std::uint32_t length);

  Step BeginPpmBlock();
  Step DecodePpm(std::uint64_t until);
  Step DecodeEscaped();
  bool DecodePpmMatch(bool is_of_last_byte);

  bool ReadFilter(const std::function<int()>& next_byte);

  Block block_ = Block::kNone;

  std::array<std::uint8_t, kMainSymbols + kDistanceSymbols + kLowDistanceSymbols + kRepeatedLengthSymbols>
      lengths_{};
  HuffmanCode main_;
  HuffmanCode distances_;
  HuffmanCode low_distances_;
  HuffmanCode repeated_lengths_;
  std::array<std::uint32_t, 4> recent_{};  // distances, the newest first
  std::uint32_t last_length_ = 0;
  std::uint32_t low_distance_ = 0;  // the last one ...
  unsigned low_repeats_ = 0;        // ... and for how many matches more it is the same

  PpmModel model_;
  RangeDecoder decoder_;
  bool has_model_ = false;  // that is of this chain
  int escape_ = 0;

  FilterPrograms programs_;
};

}  // namespace quendle::modules
