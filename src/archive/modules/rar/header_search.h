// Finding the headers behind one that is damaged.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

#include "archive/modules/common/archive_input.h"

namespace quendle::modules {

// The first position from `begin` on and in front of `end` at which a header stands. `may_be` sees some bytes and
// is asked at each position, `is` looks closer and is asked up to 10,000 times. Nothing when there is none, or no
// time is left for the search (as reads are interrupted).
std::optional<std::uint64_t> FindHeader(const ArchiveInput& input, std::uint64_t begin, std::uint64_t end,
                                        const std::function<bool(std::string_view bytes)>& may_be,
                                        const std::function<bool(std::uint64_t position)>& is);

// What `may_be` sees; zeros behind the end.
inline constexpr std::size_t kHeaderGlimpse = 16;

}  // namespace quendle::modules
