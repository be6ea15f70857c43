#include "archive/modules/rar/unpack/ppm_model.h"

#include <algorithm>
#include <utility>

namespace quendle::modules {
namespace {

constexpr unsigned kPeriodBits = 7;  // averages are over about 2^7 symbols
constexpr unsigned kBinaryTotal = 1U << RangeDecoder::kBinaryBits;

// What an escape is worth, by how likely the single symbol was.
constexpr std::array<std::uint8_t, 16> kEscapeEstimates = {25, 14, 9, 7, 5, 5, 4, 4, 4, 3, 3, 3, 2, 2, 2, 2};

constexpr std::array<std::uint16_t, 8> kFirstEscapes = {0x3CDD, 0x1F3F, 0x59BF, 0x48F3,
                                                        0x64A1, 0x5ABC, 0x6632, 0x6051};

// By the symbols of the suffix, less one.
constexpr auto kSuffixClasses = [] {
  std::array<std::uint8_t, 256> classes{};
  for (std::size_t i = 0; i < classes.size(); ++i) classes[i] = i > 10 ? 6 : i > 1 ? 4 : i > 0 ? 2 : 0;
  return classes;
}();

// By the symbols that are left, less one: 0 1 2, then 3 once, 4 twice, 5 three times and so on.
constexpr auto kLeftClasses = [] {
  std::array<std::uint8_t, 256> classes{0, 1, 2};
  unsigned value = 3;
  for (unsigned i = 3, times = 1; i < classes.size(); ++value, ++times)
    for (unsigned n = 0; n < times && i < classes.size(); ++n)
      classes[i++] = static_cast<std::uint8_t>(value);
  return classes;
}();

constexpr unsigned HighBit(std::uint8_t symbol) {
  return symbol >= 0x40 ? 8 : 0;
}

}  // namespace

unsigned PpmModel::Estimate::Take() {
  const unsigned share = sum >> shift;
  sum = static_cast<std::uint16_t>(sum - share);
  return std::max(share, 1U);
}

void PpmModel::Estimate::Confirm() {
  if (shift >= kPeriodBits || --count != 0) return;
  sum = static_cast<std::uint16_t>(sum * 2);
  count = static_cast<std::uint8_t>(3U << shift++);
}

bool PpmModel::Restart(unsigned order, std::size_t memory) {
  order_ = order;
  min_ = nullptr;
  if (!memory_.Reset(memory)) return false;
  Begin();
  return true;
}

// One context that all symbols have followed once, and what is known of symbols in general.
void PpmModel::Begin() {
  memory_.Clear();
  order_fall_ = static_cast<int>(order_);
  run_ = run_start_ = 0 - std::min(order_, 12U) - 1;
  was_likely_ = false;
  last_ = 0;
  is_broken_ = false;
  min_ = max_ = At(memory_.NewContext());
  min_->count = 256;
  min_->suffix = 0;
  min_->SetSum(257);
  min_->SetList(memory_.NewList(256));
  for (unsigned value = 0; value < 256; ++value)
    ListOf(min_)[value] = {static_cast<std::uint8_t>(value), 1, {}};
  for (unsigned i = 0; i < kBinaryRows; ++i) {
    for (unsigned k = 0; k < binary_[i].size(); ++k)
      binary_[i][k] = static_cast<std::uint16_t>(kBinaryTotal - kFirstEscapes[k % 8] / (i + 2));
  }
  for (unsigned i = 0; i < kEstimateRows; ++i)
    estimates_[i].fill({static_cast<std::uint16_t>((5 * i + 10) << (kPeriodBits - 4)), kPeriodBits - 4, 4});
}

int PpmModel::Decode(RangeDecoder* decoder) {
  if (HasModel() && !decoder->IsPastEnd() && Advance(decoder)) {
    const std::uint8_t symbol = last_ = found_->value;
    const PpmAddress next = found_->Successor();
    __builtin_prefetch(At(next));  // what is next is mostly not in the cache: a tenth of the time
    if (order_fall_ == 0 && memory_.IsUnit(next) && masked_ == 0) {
      min_ = max_ = At(next);
      return symbol;
    }
    if (Update()) return symbol;
  }
  min_ = nullptr;
  return kDamaged;
}

// Finds the next symbol. False: there is none.
bool PpmModel::Advance(RangeDecoder* decoder) {
  __builtin_prefetch(At(min_->suffix));
  high_ = HighBit(last_);
  masked_ = 0;
  found_ = nullptr;
  if (!(min_->count == 1 ? DecodeOnly(decoder) : DecodeInList(decoder))) return false;
  return found_ != nullptr || DecodeEscaped(decoder);
}

// Where one symbol is known it comes or does not. False, as of the next two: the data are damaged. An escape leaves
// found_ empty.
bool PpmModel::DecodeOnly(RangeDecoder* decoder) {
  if (min_->suffix == 0) return false;
  PpmSymbol& symbol = min_->only;
  const unsigned suffix_class = kSuffixClasses[(At(min_->suffix)->count - 1U) & 0xFF];
  const unsigned column =
      (was_likely_ ? 1 : 0) + suffix_class + high_ + 2 * HighBit(symbol.value) + (run_ >> 31 << 5);
  std::uint16_t& share = binary_[(symbol.frequency - 1U) % kBinaryRows][column];
  const unsigned step = (share + (1U << (kPeriodBits - 2))) >> kPeriodBits;
  was_likely_ = decoder->TakeFirst(share);
  if (was_likely_) {
    share = static_cast<std::uint16_t>(share + (1U << kPeriodBits) - step);
    if (symbol.frequency < 128) ++symbol.frequency;
    ++run_;
    found_ = &symbol;
  } else {
    share = static_cast<std::uint16_t>(share - step);
    escape_estimate_ = kEscapeEstimates[share >> 10];
    masks_.fill(0xFF);
    Mask({&symbol, 1});
  }
  return true;
}

bool PpmModel::DecodeInList(RangeDecoder* decoder) {
  PpmSymbol* symbol = ListOf(min_);
  PpmSymbol* const end = symbol + min_->count;
  const unsigned total = min_->Sum();
  const std::uint32_t share = decoder->Share(total);
  if (share == total) return false;
  unsigned below = symbol->frequency;
  was_likely_ = share < below && 2 * below > total;
  if (share < below) {
    decoder->Take(0, below);
    if (was_likely_) ++run_;
    Count(symbol);
    return true;
  }
  while (++symbol != end) {
    below += symbol->frequency;
    if (share >= below) continue;
    decoder->Take(below - symbol->frequency, symbol->frequency);
    if (symbol->frequency + kCounted > symbol[-1].frequency) {
      std::swap(symbol[0], symbol[-1]);
      --symbol;
    }
    Count(symbol);
    return true;
  }
  if (below >= total) return false;
  decoder->Take(below, total - below);
  masks_.fill(0xFF);
  Mask(SymbolsOf(min_));
  return true;
}

// The symbols of min_ have not come.
void PpmModel::Mask(std::span<const PpmSymbol> symbols) {
  for (const PpmSymbol& symbol : symbols) masks_[symbol.value] = 0;
  masked_ = min_->count;
}

// Behind an escape: looks in the suffixes, among the symbols that it has not ruled out.
bool PpmModel::DecodeEscaped(RangeDecoder* decoder) {
  while (GoToSuffix()) {
    const unsigned sum = UnmaskedSum();
    Estimate* estimate = EstimateForEscape();
    const unsigned escape = estimate == nullptr ? 1 : estimate->Take();
    const std::uint32_t share = decoder->Share(sum + escape);
    if (share == sum + escape) return false;
    if (share < sum) {
      if (estimate != nullptr) estimate->Confirm();
      TakeUnmasked(share, decoder);
      return true;
    }
    decoder->Take(sum, escape);
    if (estimate != nullptr) estimate->Add(sum + escape);
    Mask(SymbolsOf(min_));
  }
  return false;
}

// To the next one that has symbols which are not ruled out. False: there is none.
bool PpmModel::GoToSuffix() {
  do {
    if (min_->suffix == 0) return false;
    min_ = At(min_->suffix);
    ++order_fall_;
  } while (min_->count <= masked_);
  return true;
}

// The frequencies of those symbols of min_ that are not ruled out.
unsigned PpmModel::UnmaskedSum() const {
  unsigned sum = 0;
  for (const PpmSymbol& symbol : SymbolsOf(min_)) sum += symbol.frequency & masks_[symbol.value];
  return sum;
}

void PpmModel::TakeUnmasked(std::uint32_t share, RangeDecoder* decoder) {
  PpmSymbol* symbol = ListOf(min_);
  std::uint32_t below = symbol->frequency & masks_[symbol->value];
  for (; share >= below; below += symbol->frequency & masks_[symbol->value]) ++symbol;
  decoder->Take(below - symbol->frequency, symbol->frequency);
  run_ = run_start_;
  Count(symbol);
}

// By how many symbols are left, and what kind of context it is. Null: an escape is worth 1 where all symbols are known.
PpmModel::Estimate* PpmModel::EstimateForEscape() {
  const unsigned count = min_->count;
  if (count == 256 || min_->suffix == 0) return nullptr;
  const unsigned left = count - masked_;
  const unsigned suffix_adds = At(min_->suffix)->count - count;
  const unsigned column = (left < suffix_adds ? 1U : 0U) + (min_->Sum() < 11 * count ? 2U : 0U) +
                          (masked_ > left ? 4U : 0U) + high_;
  return &estimates_[kLeftClasses[left - 1]][column];
}

}  // namespace quendle::modules
