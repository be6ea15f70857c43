// Which entry of a listing an engine means: engines may know entries by their paths only.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "archive/modules/common/entry_reader.h"

namespace quendle::modules {

// Finds the place in the listing of the entries that a reader gives one after the other.
class EntryMatcher {
 public:
  // `listed` outlives the object.
  explicit EntryMatcher(const std::vector<Entry>& listed) : listed_(listed) {}

  // Of equal paths the same one in turn; nothing for an entry that was not listed.
  std::optional<std::size_t> Find(const Entry& entry) {
    // Readers give nearly always what was listed, one after the other: no need to know the rest by its paths.
    if (by_path_.empty() && in_order_ < listed_.size() && listed_[in_order_].path == entry.path)
      return in_order_++;
    if (by_path_.empty()) IndexPaths();
    const auto known = by_path_.find(entry.path);
    if (known == by_path_.end()) return std::nullopt;
    Places& places = known->second;
    if (places.all.size() == 1) return places.all.front();
    return places.turn < places.all.size() ? std::optional(places.all[places.turn++]) : std::nullopt;
  }

 private:
  struct Places {
    std::vector<std::size_t> all;
    std::size_t turn = 0;  // the next of them
  };

  void IndexPaths() {
    for (std::size_t i = 0; i < listed_.size(); ++i) {
      Places& places = by_path_[listed_[i].path];
      places.all.push_back(i);
      if (i < in_order_) ++places.turn;
    }
  }

  const std::vector<Entry>& listed_;
  std::size_t in_order_ = 0;  // so many were met in the order of the list
  std::unordered_map<std::string_view, Places> by_path_;
};

}  // namespace quendle::modules
