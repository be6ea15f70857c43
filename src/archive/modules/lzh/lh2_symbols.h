// The symbols of -lh2-.
#pragma once

#include "archive/modules/lzh/adaptive_tree.h"
#include "archive/modules/lzh/window_unpacker.h"

namespace quendle::modules {

// Both codes are adaptive. That of positions has but the nearest 64 at first, and learns of 64 more behind each
// 64 bytes of content, until it has all.
class Lh2Symbols final : public WindowSymbols {
 public:
  explicit Lh2Symbols(PackedBytes* packed) { bits_.Begin(packed); }

  unsigned NextCode() override;
  unsigned NextPosition(std::uint64_t made) override;
  bool ok() const override { return !bits_.IsPastEnd(); }

 private:
  BitReader bits_;
  AdaptiveTree codes_{kWindowCodes};
  AdaptiveTree positions_{1};
  std::uint64_t known_positions_ = 1;  // codes of them
};

}  // namespace quendle::modules
