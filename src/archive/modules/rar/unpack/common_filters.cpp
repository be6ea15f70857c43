#include "archive/modules/rar/unpack/common_filters.h"

#include <algorithm>
#include <cstddef>

#include "archive/modules/rar/unpack/filter_bytes.h"

namespace quendle::modules {
namespace {

// All addresses are below this; those of a call that leads further back than to the beginning have it added.
constexpr std::uint32_t kAddresses = 1U << 24;

bool IsNegative(std::uint32_t value) {
  return value >> 31 != 0;
}

// How far it is from `position` to `address`, or what was meant to stay as it is.
std::uint32_t Relative(std::uint32_t address, std::uint32_t position) {
  if (IsNegative(address)) return IsNegative(address + position) ? address : address + kAddresses;
  return address < kAddresses ? address - position : address;
}

}  // namespace

bool DeltaFilter::Run(std::uint64_t /*position*/, std::vector<std::uint8_t>* bytes) {
  if (channels_ == 0) return false;
  const std::size_t size = bytes->size();
  const std::size_t channels = channels_;
  std::vector<std::uint8_t> mixed(size);
  const std::uint8_t* from = bytes->data();
  for (std::size_t channel = 0; channel < std::min(channels, size); ++channel) {
    std::uint8_t value = 0;
    for (std::size_t i = channel; i < size; i += channels)
      mixed[i] = value = static_cast<std::uint8_t>(value - *from++);
  }
  bytes->swap(mixed);
  return true;
}

bool X86Filter::Run(std::uint64_t position, std::vector<std::uint8_t>* bytes) {
  constexpr std::size_t kInstruction = 5;
  std::uint8_t* const data = bytes->data();
  const std::size_t size = bytes->size();
  for (std::size_t i = 0; i + kInstruction <= size; ++i) {
    if ((data[i] & opcode_mask_) != 0xE8) continue;
    std::uint8_t* const address = data + i + 1;
    const auto after_opcode = static_cast<std::uint32_t>(position + i + 1) & position_mask_;
    StoreNumber(Relative(LoadNumber(address, 4), after_opcode), 4, address);
    i += kInstruction - 1;
  }
  return true;
}

bool ArmFilter::Run(std::uint64_t position, std::vector<std::uint8_t>* bytes) {
  constexpr std::uint8_t kBranchWithLink = 0xEB;
  std::uint8_t* const data = bytes->data();
  for (std::size_t i = 0; i + 4 <= bytes->size(); i += 4)
    if (data[i + 3] == kBranchWithLink)
      StoreNumber(LoadNumber(data + i, 3) - static_cast<std::uint32_t>((position + i) / 4), 3, data + i);
  return true;
}

}  // namespace quendle::modules
