#include "archive/modules/lzh/adaptive_tree.h"

#include <algorithm>
#include <utility>

namespace quendle::modules {

AdaptiveTree::AdaptiveTree(std::size_t symbols) : symbols_(symbols), size_(2 * symbols - 1) {
  std::vector<Node> leaves;
  while (symbols-- > 0) leaves.push_back({size_ == 1 ? 0U : 1U, 0, static_cast<unsigned>(symbols)});
  Build(std::move(leaves));
}

unsigned AdaptiveTree::Next(BitReader* bits) {
  std::size_t node = 0;
  while (nodes_[node].child != 0) node = nodes_[node].child - bits->Take(1);
  const unsigned symbol = nodes_[node].symbol;
  Count(symbol);
  return symbol;
}

// The last leaf becomes a node with two: itself, and the new one behind it.
void AdaptiveTree::AddSymbol() {
  const std::size_t last = size_ - 1;
  const std::size_t added = last + 2;
  nodes_[last + 1] = nodes_[last];
  // A leaf that was alone counts once, however often it came.
  if (last == 0) nodes_[last + 1].frequency = 1;
  nodes_[last].child = added;
  nodes_[added] = {0, 0, static_cast<unsigned>(symbols_)};
  size_ += 2;
  Attach(last);
  Attach(last + 1);
  Attach(added);
  Count(static_cast<unsigned>(symbols_++));
}

void AdaptiveTree::Count(unsigned symbol) {
  constexpr unsigned kMostCounted = 0x8000;
  if (nodes_[0].frequency >= kMostCounted) Halve();
  for (std::size_t node = leaves_[symbol]; node != 0; node = parents_[node]) {
    const auto foremost = std::lower_bound(
        nodes_.begin() + 1, nodes_.begin() + static_cast<std::ptrdiff_t>(node), nodes_[node].frequency,
        [](const Node& other, unsigned frequency) { return other.frequency > frequency; });
    const auto place = static_cast<std::size_t>(foremost - nodes_.begin());
    if (place != node) SwapSubtrees(place, node);
    node = place;
    ++nodes_[node].frequency;
  }
  ++nodes_[0].frequency;
}

void AdaptiveTree::SwapSubtrees(std::size_t a, std::size_t b) {
  std::swap(nodes_[a], nodes_[b]);
  Attach(a);
  Attach(b);
}

void AdaptiveTree::Halve() {
  std::vector<Node> leaves;
  for (std::size_t i = 0; i < size_; ++i) {
    if (nodes_[i].child == 0) leaves.push_back({(nodes_[i].frequency + 1) / 2, 0, nodes_[i].symbol});
  }
  Build(std::move(leaves));
}

// From the rearmost place on comes the next leaf, or what joins the next two nodes if that is less frequent.
void AdaptiveTree::Build(std::vector<Node> leaves) {
  std::size_t pair = size_ - 1;  // the second one of the next two nodes
  for (std::size_t place = size_; place-- > 0;) {
    const bool has_pair = pair > place + 1;
    const unsigned joined = has_pair ? nodes_[pair].frequency + nodes_[pair - 1].frequency : 0;
    if (!leaves.empty() && (!has_pair || leaves.back().frequency <= joined)) {
      nodes_[place] = leaves.back();
      leaves.pop_back();
    } else {
      nodes_[place] = {joined, pair, 0};
      pair -= 2;
    }
    Attach(place);
  }
}

void AdaptiveTree::Attach(std::size_t node) {
  if (const std::size_t child = nodes_[node].child; child != 0) {
    parents_[child] = parents_[child - 1] = node;
  } else {
    leaves_[nodes_[node].symbol] = node;
  }
}

}  // namespace quendle::modules
