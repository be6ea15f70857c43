// What a PPM model remembers, as it lies in its memory. The sizes are part of the format: they decide when the memory is
// used up.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>

namespace quendle::modules {

// Where something is in the memory of a model. 0: nowhere.
using PpmAddress = std::uint32_t;

// A symbol that has followed a context. It may lie at any address.
struct PpmSymbol {
  std::uint8_t value;
  std::uint8_t frequency;

  // The context that this one becomes with the symbol, if it was seen. Until it is made: where in the text it was.
  PpmAddress Successor() const {
    PpmAddress address = 0;
    std::memcpy(&address, successor.data(), sizeof(address));
    return address;
  }
  void SetSuccessor(PpmAddress address) { std::memcpy(successor.data(), &address, sizeof(address)); }

  std::array<std::uint8_t, sizeof(PpmAddress)> successor;
};
static_assert(sizeof(PpmSymbol) == 6);

// What followed some last bytes. A single symbol stands in the context itself, several do in a list.
struct PpmContext {
  std::uint16_t count;  // of symbols, 1 to 256
  PpmSymbol only;       // if count is 1, else it has Sum() and List()
  PpmAddress suffix;    // the context of one byte less; 0: this is the one of none

  // The frequencies of all symbols and of the escape.
  std::uint16_t Sum() const {
    std::uint16_t sum = 0;
    std::memcpy(&sum, &only, sizeof(sum));
    return sum;
  }
  void SetSum(unsigned sum) {
    const auto narrow = static_cast<std::uint16_t>(sum);
    std::memcpy(&only, &narrow, sizeof(narrow));
  }

  // Where the symbols are.
  PpmAddress List() const { return only.Successor(); }
  void SetList(PpmAddress list) { only.SetSuccessor(list); }
};
static_assert(sizeof(PpmContext) == 12);

}  // namespace quendle::modules
