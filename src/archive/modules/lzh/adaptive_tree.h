// A Huffman code that changes with each symbol, as -lh2- has two of.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "archive/modules/lz/bit_reader.h"

namespace quendle::modules {

// Its nodes are a list by falling frequency, the root first; two that have the same parent stand side by side. A
// symbol that is counted adds 1 to the frequencies of its leaf and of all nodes above it; to keep the order, each
// first changes places with the foremost node that is as frequent. When 32,768 symbols were counted, all
// frequencies are halved and the nodes above the leaves made anew.
class AdaptiveTree {
 public:
  // For the symbols from 0 on, each counted once; a single one not yet.
  explicit AdaptiveTree(std::size_t symbols);

  // The next symbol, counted.
  unsigned Next(BitReader* bits);

  // Takes in the next symbol that it does not have, counted. There is room for 286.
  void AddSymbol();

 private:
  static constexpr std::size_t kMostNodes = 2 * 286 - 1;

  struct Node {
    unsigned frequency = 0;
    std::size_t child = 0;  // the second one of two; 0: a leaf
    unsigned symbol = 0;    // of a leaf
  };

  void Count(unsigned symbol);
  void SwapSubtrees(std::size_t a, std::size_t b);
  void Halve();
  void Build(std::vector<Node> leaves);  // which are in order
  // Tells what the node has below it that it stands there.
  void Attach(std::size_t node);

  std::size_t symbols_ = 0;
  std::size_t size_ = 0;  // nodes
  std::array<Node, kMostNodes> nodes_;
  std::array<std::size_t, kMostNodes> parents_{};
  std::array<std::size_t, kMostNodes> leaves_{};  // of each symbol
};

}  // namespace quendle::modules
