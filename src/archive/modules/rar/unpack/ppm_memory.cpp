#include "archive/modules/rar/unpack/ppm_memory.h"

#include <algorithm>

namespace quendle::modules {
namespace {

constexpr unsigned kUnit = sizeof(PpmContext);

// The units of a block by its class: 1 2 3 4, 6 8 10 12, 15 18 21 24, 28 32 ... 128.
constexpr auto kUnitsOf = [] {
  std::array<std::uint8_t, 38> units{};
  unsigned next = 0;
  for (unsigned i = 0; i < units.size(); ++i) {
    next += i < 4 ? 1 : i < 8 ? 2 : i < 12 ? 3 : 4;
    units[i] = static_cast<std::uint8_t>(next);
  }
  return units;
}();
static_assert(kUnitsOf.back() == 128);

// The smallest class for a number of units.
constexpr auto kClassFor = [] {
  std::array<std::uint8_t, 129> classes{};
  for (unsigned units = 1, i = 0; units < classes.size(); ++units) {
    if (units > kUnitsOf[i]) ++i;
    classes[units] = static_cast<std::uint8_t>(i);
  }
  return classes;
}();

}  // namespace

unsigned PpmMemory::ClassOfList(unsigned symbols) {
  return kClassFor[(symbols + 1) / 2];
}

bool PpmMemory::Reset(std::size_t size) {
  if (capacity_ < size) {
    bytes_.reset();  // first: both together may be too much
    // Not a vector, which would write to all of it.
    bytes_.reset(static_cast<std::uint8_t*>(std::calloc(size, 1)));
    capacity_ = bytes_ == nullptr ? 0 : size;
  }
  end_ = static_cast<PpmAddress>(size);
  if (bytes_ == nullptr) return false;
  Clear();
  return true;
}

void PpmMemory::Clear() {
  text_end_ = 0;
  units_ = low_ = end_ - end_ / 8 / kUnit * 7 * kUnit;
  high_ = end_;
  until_join_ = 0;
  free_.fill(0);
}

PpmAddress PpmMemory::NewContext() {
  if (low_ != high_) return high_ -= kUnit;
  return free_[0] != 0 ? TakeFree(0) : NewBlockRarely(0);
}

PpmAddress PpmMemory::NewBlock(std::size_t size_class) {
  if (free_[size_class] != 0) return TakeFree(size_class);
  const unsigned size = kUnitsOf[size_class] * kUnit;
  if (high_ - low_ < size) return NewBlockRarely(size_class);
  low_ += size;
  return low_ - size;
}

PpmAddress PpmMemory::NewBlockRarely(std::size_t size_class) {
  if (until_join_ == 0) {
    until_join_ = 255;
    JoinFree();
    if (free_[size_class] != 0) return TakeFree(size_class);
  }
  const unsigned units = kUnitsOf[size_class];
  for (std::size_t larger = size_class + 1; larger < kClasses; ++larger) {
    if (free_[larger] == 0) continue;
    const PpmAddress block = TakeFree(larger);
    FreeUnits(block + units * kUnit, kUnitsOf[larger] - units);
    return block;
  }
  --until_join_;
  if (units_ - text_end_ <= units * kUnit) return 0;
  return units_ -= units * kUnit;
}

PpmAddress PpmMemory::TakeFree(std::size_t size_class) {
  const PpmAddress block = free_[size_class];
  free_[size_class] = At<FreeBlock>(block)->next;
  return block;
}

void PpmMemory::Free(PpmAddress block, std::size_t size_class) {
  *At<FreeBlock>(block) = {FreeBlock::kMark, kUnitsOf[size_class], free_[size_class]};
  free_[size_class] = block;
}

// Frees up to 128 units: as one block, or as the largest that is smaller and one of the rest.
void PpmMemory::FreeUnits(PpmAddress block, unsigned units) {
  std::size_t size_class = kClassFor[units];
  if (kUnitsOf[size_class] != units) {
    const unsigned smaller = kUnitsOf[--size_class];
    Free(block + smaller * kUnit, kClassFor[units - smaller]);
  }
  Free(block, size_class);
}

// All free blocks behind each other, the largest ones first and of these the one that was freed first.
PpmAddress PpmMemory::ChainFree() {
  PpmAddress chain = 0;
  for (PpmAddress& list : free_) {
    while (list != 0) {
      auto* block = At<FreeBlock>(list);
      const PpmAddress next = block->next;
      block->next = chain;
      chain = list;
      list = next;
    }
  }
  return chain;
}

// Takes in the blocks that lie behind it as long as they are free, too. They stay in the chain, without units.
void PpmMemory::MergeWithNext(FreeBlock* block) {
  constexpr unsigned kMostUnits = 0xFFFF;
  while (true) {
    const PpmAddress behind = AddressOf(block) + block->units * kUnit;
    if (behind >= end_) return;
    auto* next = At<FreeBlock>(behind);
    if (next->mark != FreeBlock::kMark || next->units == 0 || block->units + next->units > kMostUnits) return;
    block->units = static_cast<std::uint16_t>(block->units + next->units);
    next->units = 0;
  }
}

void PpmMemory::JoinFree() {
  // What was not given out yet is no block, whatever was there before.
  if (low_ != high_) At<FreeBlock>(low_)->mark = FreeBlock::kMark + 1;
  PpmAddress chain = ChainFree();
  for (PpmAddress at = chain; at != 0; at = At<FreeBlock>(at)->next) {
    if (At<FreeBlock>(at)->units != 0) MergeWithNext(At<FreeBlock>(at));
  }
  for (PpmAddress* link = &chain; *link != 0;) {
    auto* block = At<FreeBlock>(*link);
    if (block->units == 0) {
      *link = block->next;
    } else {
      link = &block->next;
    }
  }
  for (PpmAddress at = chain, next = 0; at != 0; at = next) {
    next = At<FreeBlock>(at)->next;
    unsigned units = At<FreeBlock>(at)->units;
    PpmAddress block = at;
    for (; units > kLargest; units -= kLargest, block += kLargest * kUnit) Free(block, kClasses - 1);
    FreeUnits(block, units);
  }
}

PpmAddress PpmMemory::GrowList(PpmAddress list, unsigned symbols) {
  const unsigned now = ClassOfList(symbols);
  const unsigned wanted = ClassOfList(symbols + 1);
  if (now == wanted) return list;
  const PpmAddress grown = NewBlock(wanted);
  if (grown == 0) return 0;
  std::copy_n(At<PpmSymbol>(list), symbols, At<PpmSymbol>(grown));
  Free(list, now);
  return grown;
}

PpmAddress PpmMemory::ShrinkList(PpmAddress list, unsigned symbols, unsigned left) {
  const unsigned now = ClassOfList(symbols);
  const unsigned wanted = ClassOfList(left);
  if (now == wanted) return list;
  if (free_[wanted] == 0) {
    FreeUnits(list + kUnitsOf[wanted] * kUnit, kUnitsOf[now] - kUnitsOf[wanted]);
    return list;
  }
  const PpmAddress shrunk = TakeFree(wanted);
  std::copy_n(At<PpmSymbol>(list), left, At<PpmSymbol>(shrunk));
  Free(list, now);
  return shrunk;
}

}  // namespace quendle::modules
