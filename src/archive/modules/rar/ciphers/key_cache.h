// The keys that were derived last, so that entries with the same salt cost one derivation.
#pragma once

#include <cstddef>
#include <list>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>

namespace quendle::modules {

// Of Rar3Key or Rar5Keys. Not for several threads at once.
template <typename Key>
class KeyCache {
 public:
  // The key of these three, by `derive()` unless it was used lately; nothing when that gives nothing, which is not
  // kept. `variant` is what the derivation is told beside password and salt, such as the number of rounds.
  template <typename Derive>
  std::optional<Key> Get(std::string_view password, std::string_view salt, unsigned variant,
                         const Derive& derive) {
    const auto sought = std::tie(password, salt, variant);
    for (auto entry = entries_.begin(); entry != entries_.end(); ++entry) {
      if (std::tie(entry->password, entry->salt, entry->variant) == sought) {
        entries_.splice(entries_.begin(), entries_, entry);
        return entry->key;
      }
    }
    const std::optional<Key> key = derive();
    if (!key) return key;
    entries_.push_front({std::string(password), std::string(salt), variant, *key});
    if (entries_.size() > kMostKeys) entries_.pop_back();
    return key;
  }

 private:
  static constexpr std::size_t kMostKeys = 64;

  struct Entry {
    std::string password;
    std::string salt;
    unsigned variant = 0;
    Key key;
  };

  std::list<Entry> entries_;  // the last used first
};

}  // namespace quendle::modules
