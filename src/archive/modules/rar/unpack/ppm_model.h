// Prediction by partial matching, as RAR 2.9 to 4 pack texts: PPMd, variant H. What comes next is told by what followed
// the last bytes before: first the longest of those contexts, and after an escape a shorter one.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "archive/modules/rar/unpack/ppm_contexts.h"
#include "archive/modules/rar/unpack/ppm_memory.h"
#include "archive/modules/rar/unpack/range_decoder.h"

namespace quendle::modules {

class PpmModel {
 public:
  static constexpr int kDamaged = -1;

  // Begins a new model with contexts of `order` bytes at most, 2 to 64, in `memory` bytes: whole MiB, 256 at most. What it
  // held is forgotten. False: the system does not have that much, and there is no model.
  [[nodiscard]] bool Restart(unsigned order, std::size_t memory);

  // Is there one that Decode can go on with?
  bool HasModel() const { return min_ != nullptr; }

  // The next symbol, 0 to 255. kDamaged: the packed data are, or they have ended; the model is gone then.
  int Decode(RangeDecoder* decoder);

 private:
  // How likely an escape is where several symbols are left: an average of what it was in like contexts.
  struct Estimate {
    // What an escape is worth next to the frequencies of the symbols, at least 1.
    unsigned Take();
    // A symbol came ...
    void Confirm();
    // ... or an escape, where all were worth `total`.
    void Add(unsigned total) { sum = static_cast<std::uint16_t>(sum + total); }

    std::uint16_t sum;   // 2^shift times what an escape is worth
    std::uint8_t shift;  // grows, to make the average one of more symbols
    std::uint8_t count;  // of symbols until it grows
  };
  static constexpr unsigned kCounted = 4;  // what a symbol's frequency grows by when it comes
  static constexpr std::size_t kEstimateRows = 25;
  static constexpr std::size_t kBinaryRows = 128;

  void Begin();
  bool Advance(RangeDecoder* decoder);
  bool DecodeOnly(RangeDecoder* decoder);
  bool DecodeInList(RangeDecoder* decoder);
  bool DecodeEscaped(RangeDecoder* decoder);
  bool GoToSuffix();
  void Mask(std::span<const PpmSymbol> symbols);
  unsigned UnmaskedSum() const;
  void TakeUnmasked(std::uint32_t share, RangeDecoder* decoder);
  Estimate* EstimateForEscape();

  // All that follows is in ppm_update.cpp.
  void Count(PpmSymbol* symbol);
  void Rescale();
  void DropSymbols(unsigned left, unsigned escapes);
  bool Update();
  PpmSymbol* CountInSuffix(std::uint8_t value);
  PpmAddress Learn(const PpmSymbol& found, PpmSymbol* in_suffix);
  PpmAddress MakeSuccessors(const PpmSymbol& found, PpmSymbol* in_suffix, bool with_found);
  PpmAddress MakeContexts(std::span<PpmSymbol* const> symbols, PpmAddress text, PpmContext* suffix);
  bool AddSymbol(PpmContext* context, const PpmSymbol& found, PpmAddress successor);
  PpmSymbol* Find(PpmContext* context, std::uint8_t value);
  PpmAddress Broken() {
    is_broken_ = true;
    return 0;
  }

  PpmContext* At(PpmAddress address) const { return memory_.At<PpmContext>(address); }
  PpmSymbol* ListOf(const PpmContext* context) const { return memory_.At<PpmSymbol>(context->List()); }
  std::span<PpmSymbol> SymbolsOf(PpmContext* context) const {
    return {context->count == 1 ? &context->only : ListOf(context), context->count};
  }

  PpmMemory memory_;
  unsigned order_ = 0;
  PpmContext* min_ = nullptr;   // where the last symbol was found, or the next is looked for first
  PpmContext* max_ = nullptr;   // where the last symbol was looked for first
  PpmSymbol* found_ = nullptr;  // in min_
  std::uint8_t last_ = 0;       // the symbol decoded last
  bool is_broken_ = false;      // the model is not as it can be; packed data alone do not make it so
  int order_fall_ = 0;          // by how many bytes max_ is shorter than the order
  bool was_likely_ = false;     // was the last symbol the one that was expected?
  std::uint32_t run_start_ = 0;
  std::uint32_t run_ = 0;  // from a negative start, counts symbols since the last escape that were expected
  std::uint8_t escape_estimate_ = 0;       // what single symbols were worth when the last escape came
  unsigned high_ = 0;                      // 8 when the symbol before was 40h or more, else 0
  unsigned masked_ = 0;                    // symbols that an escape has ruled out
  std::array<std::uint8_t, 256> masks_{};  // 0 for these, for all others FFh
  std::array<std::array<std::uint16_t, 64>, kBinaryRows> binary_{};  // of 2^14, that the only symbol comes
  std::array<std::array<Estimate, 16>, kEstimateRows> estimates_{};
};

}  // namespace quendle::modules
