#include "archive/modules/common/signature_scan.h"

#include <algorithm>
#include <string>

namespace quendle::modules {
namespace {

constexpr std::uint64_t kBlock = 256U << 10;

// Where the signatures stand in some bytes, one place after the other.
class Places {
 public:
  Places(std::string_view bytes, const std::vector<std::string_view>& signatures)
      : bytes_(bytes), signatures_(signatures) {
    for (const std::string_view signature : signatures_) next_.push_back(bytes_.find(signature));
  }

  // npos when there are no more.
  std::size_t Next() {
    const std::size_t place = next_.empty() ? bytes_.npos : *std::min_element(next_.begin(), next_.end());
    if (place == bytes_.npos) return place;
    for (std::size_t i = 0; i < next_.size(); ++i) {
      if (next_[i] == place) next_[i] = bytes_.find(signatures_[i], place + 1);
    }
    return place;
  }

 private:
  std::string_view bytes_;
  const std::vector<std::string_view>& signatures_;
  std::vector<std::size_t> next_;  // of each signature
};

}  // namespace

bool BeginsWithProgram(const ArchiveInput& input) {
  char begin[4] = {};
  std::size_t got = 0;
  if (!input.ReadAt(0, begin, sizeof begin, &got).ok()) return false;
  const std::string_view bytes(begin, got);
  return bytes.starts_with("MZ") || bytes.starts_with(
                                        "\x7F"
                                        "ELF");
}

std::optional<std::uint64_t> FindSignature(const ArchiveInput& input, const SignatureRule& rule,
                                           const std::function<bool(std::uint64_t position)>& fits) {
  std::size_t longest = 1;
  for (const std::string_view signature : rule.signatures) longest = std::max(longest, signature.size());
  const std::uint64_t reach = std::min(BeginsWithProgram(input) ? rule.reach : 1, input.Size());
  std::string block;
  for (std::uint64_t begin = 0; begin < reach; begin += kBlock) {
    const auto candidates = static_cast<std::size_t>(std::min(kBlock, reach - begin));
    // A signature that begins at the last candidate ends behind the block.
    block.resize(candidates + longest - 1);
    std::size_t got = 0;
    if (!input.ReadAt(begin + rule.lead, block.data(), block.size(), &got).ok()) return std::nullopt;
    Places places(std::string_view(block).substr(0, got), rule.signatures);
    for (std::size_t place = places.Next(); place < candidates; place = places.Next()) {
      if (fits(begin + place)) return begin + place;
    }
  }
  return std::nullopt;
}

}  // namespace quendle::modules
