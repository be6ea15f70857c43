#include "archive/modules/rar/ciphers/blake2sp.h"

#include <algorithm>

namespace quendle::modules {

namespace {

// `depth` 0 is a leaf, 1 the root.
blake2s_state Node(std::size_t leaves, std::size_t depth, std::size_t offset, bool is_last) {
  blake2s_param tree{};
  tree.digest_length = BLAKE2S_OUTBYTES;
  tree.fanout = static_cast<std::uint8_t>(leaves);
  tree.depth = 2;
  tree.node_offset[0] = static_cast<std::uint8_t>(offset);
  tree.node_depth = static_cast<std::uint8_t>(depth);
  tree.inner_length = BLAKE2S_OUTBYTES;
  blake2s_state state{};
  blake2s_init_param(&state, &tree);
  state.last_node = is_last ? 1 : 0;
  return state;
}

}  // namespace

Blake2sp::Blake2sp() : leaves_{} {
  for (std::size_t i = 0; i < kLeaves; ++i) leaves_[i] = Node(kLeaves, 0, i, i == kLeaves - 1);
}

void Blake2sp::Add(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::size_t room = BLAKE2S_BLOCKBYTES - position_ % BLAKE2S_BLOCKBYTES;
    const std::size_t size = std::min(room, bytes.size());
    blake2s_update(&leaves_[position_ / BLAKE2S_BLOCKBYTES],
                   reinterpret_cast<const std::uint8_t*>(bytes.data()), size);
    position_ = (position_ + size) % (kLeaves * BLAKE2S_BLOCKBYTES);
    bytes.remove_prefix(size);
  }
}

Blake2sp::Digest Blake2sp::Value() const {
  blake2s_state root = Node(kLeaves, 1, 0, true);
  Digest digest{};
  for (blake2s_state leaf : leaves_) {
    blake2s_final(&leaf, digest.data(), digest.size());
    blake2s_update(&root, digest.data(), digest.size());
  }
  blake2s_final(&root, digest.data(), digest.size());
  return digest;
}

}  // namespace quendle::modules
