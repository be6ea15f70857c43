// What RAR 2.0 to 2.6 packed (versions 20 and 26 of entries): matches and literals, or sounds.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "archive/modules/lz/huffman_code.h"
#include "archive/modules/rar/unpack/audio20.h"
#include "archive/modules/rar/unpack/recent_distances.h"
#include "archive/modules/rar/unpack/unpacker.h"

namespace quendle::modules {

class Unpack20 final : public Unpacker {
 public:
  Unpack20() { Reset(); }

 protected:
  void BeginEntry(const PackedEntry& entry) override;
  Step Decode(std::uint64_t until) override;
  std::optional<Step> EndWithoutMark() override;

 private:
  static constexpr std::size_t kMostChannels = 4;
  static constexpr std::size_t kAudioSymbols = 257;

  // Codes until the next ones. Later ones may say only how their lengths differ.
  struct Codes {
    std::array<std::uint8_t, kMostChannels * kAudioSymbols> lengths{};
    bool is_audio = false;
    unsigned channels = 1;  // 1 to 4, of a sound
    unsigned channel = 0;   // of the next byte
    // Of each channel, or of what Code says.
    std::array<HuffmanCode, kMostChannels> codes;

    bool Read(BitReader* bits);
  };

  void Reset();
  bool ReadCodes();
  bool DecodeAudio(std::uint64_t until);
  bool DecodeMatches(std::uint64_t until);
  bool DecodeMatch(unsigned symbol);

  Codes codes_;
  bool has_codes_ = false;
  RecentDistances distances_;
  std::uint32_t last_length_ = 0;
  std::array<AudioChannel, kMostChannels> channels_;
  int audio_step_ = 0;
};

}  // namespace quendle::modules
