#include "archive/modules/rar/header_search.h"

#include <algorithm>
#include <string>

namespace quendle::modules {
namespace {

constexpr std::size_t kBlock = 256U << 10;
constexpr unsigned kMostCandidates = 10'000;

}  // namespace

std::optional<std::uint64_t> FindHeader(const ArchiveInput& input, std::uint64_t begin, std::uint64_t end,
                                        const std::function<bool(std::string_view bytes)>& may_be,
                                        const std::function<bool(std::uint64_t position)>& is) {
  unsigned candidates = 0;
  std::string bytes;
  for (std::uint64_t position = begin; position < end; position += kBlock) {
    const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(kBlock, end - position));
    std::size_t got = 0;
    bytes.assign(count + kHeaderGlimpse, '\0');
    if (!input.ReadAt(position, bytes.data(), bytes.size(), &got).ok() || got < count) return std::nullopt;
    for (std::size_t i = 0; i < count; ++i) {
      if (!may_be(std::string_view(bytes).substr(i, kHeaderGlimpse))) continue;
      if (is(position + i)) return position + i;
      if (++candidates == kMostCandidates) return std::nullopt;
    }
  }
  return std::nullopt;
}

}  // namespace quendle::modules
