// Which entry of a listing an engine means: engines may know entries by their paths only.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "archive/modules/common/entry_reader.h"

namespace quendle::modules {

// Finds the place in the listing of the entries that a reader gives one after the other.
class EntryMatcher {
 public:
  // The places of the entries of each path, in their order.
  using Index = std::unordered_map<std::string, std::vector<std::size_t>>;

  explicit EntryMatcher(const Index& by_path) : by_path_(by_path) {}

  // Of equal paths the same one in turn; nothing for an entry that was not listed.
  std::optional<std::size_t> Find(const Entry& entry) {
    const auto known = by_path_.find(entry.path);
    if (known == by_path_.end()) return std::nullopt;
    if (known->second.size() == 1) return known->second.front();
    const std::size_t turn = seen_[entry.path]++;
    return turn < known->second.size() ? std::optional(known->second[turn]) : std::nullopt;
  }

 private:
  const Index& by_path_;
  std::unordered_map<std::string, std::size_t> seen_;
};

}  // namespace quendle::modules
