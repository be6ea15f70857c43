// What RAR 1.3 to 1.5 packed (version 15 of entries): literals and matches in codes that follow running averages of what came.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "archive/modules/rar/unpack/recent_distances.h"
#include "archive/modules/rar/unpack/unpack15_codes.h"
#include "archive/modules/rar/unpack/unpacker.h"

namespace quendle::modules {

class Unpack15 final : public Unpacker {
 public:
  Unpack15() { Reset(); }

 protected:
  void BeginEntry(const PackedEntry& entry) override;
  Step Decode(std::uint64_t until) override;
  std::optional<Step> EndWithoutMark() override { return Step::kEnd; }

 private:
  // Kept over solid entries.
  struct State {
    State();

    // Which of literals and long matches came more lately.
    unsigned literal_weight = 0x80;
    unsigned match_weight = 0x80;
    // Running averages, each times a power of two.
    unsigned literal = 0x3500;
    unsigned distance = 0;
    unsigned selector = 0;
    unsigned length = 0;
    unsigned nearness = 0;

    unsigned far_limit = 0x2001;  // matches from there on are longer by one
    unsigned literals_in_row = 0;
    bool has_selector_14 = false;

    MoveUpList literals;
    MoveUpList far_distances;  // bits 7 to 14 of them
    MoveUpList flags{MoveUpList::kFalling};
    std::array<std::uint8_t, 256> near_distances;

    RecentDistances recent;
    std::uint32_t last_distance = 0;
    std::uint32_t last_length = 0;
  };

  // False: what comes is damaged.
  bool DecodeNext();
  bool DecodeLiteral();
  bool DecodeInLiteralRun();
  bool DecodeShortMatch();
  bool DecodeLongMatch();
  bool DecodeNear(unsigned selector);
  bool DecodeRecent(unsigned age);
  bool DecodeFar();
  unsigned TakeRawLength();
  std::optional<bool> TakeFlag();
  bool CopyNew(std::uint32_t distance, std::uint32_t length);
  bool CopyLast() { return window_.Copy(state_.last_distance, state_.last_length); }

  void Reset();

  State state_;
  // These begin anew with each entry.
  bool in_literal_run_ = false;
  unsigned flags_ = 0;
  unsigned flags_left_ = 0;
  unsigned repetitions_ = 0;
};

}  // namespace quendle::modules
