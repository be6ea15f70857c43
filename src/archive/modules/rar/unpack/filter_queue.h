// Filters change ranges of what was unpacked on its way out: packers turn programs, pictures and sounds into what packs
// better, and say what turns it back.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string_view>
#include <vector>

namespace quendle::modules {

class Filter {
 public:
  virtual ~Filter() = default;

  // Changes the bytes of a range that begins at `position` of its entry. False: they cannot be changed that way.
  virtual bool Run(std::uint64_t position, std::vector<std::uint8_t>* bytes) = 0;
};

class FilterQueue {
 public:
  // A new entry: filters that still waited for theirs are gone.
  void Begin();

  // For the `length` bytes from `start` of the entry on, which were not passed yet. For one range there may be several,
  // each changes what the one before it made. False: too many wait, or are for one range, they overlap, or are not in the
  // order of their ranges.
  bool Add(std::uint64_t start, std::size_t length, std::unique_ptr<Filter> filter);

  // Takes the entry's next bytes from the front of `raw` and gives the next bytes that are to go out, empty while
  // a range is not complete; valid until the next call or as long as `raw`. False: a filter failed.
  bool Pass(std::string_view* raw, std::string_view* out);

  // Waits one for the rest of its range?
  bool IsHolding() const { return !range_.empty(); }

 private:
  struct Pending {
    std::uint64_t start;
    std::size_t length;
    std::unique_ptr<Filter> filter;
  };

  bool RunFront();

  static constexpr std::size_t kMostPending = 8192;
  // Each goes over all of the range before anything of it comes out.
  static constexpr unsigned kMostInRange = 8;

  std::deque<Pending> pending_;
  unsigned in_last_range_ = 0;
  std::uint64_t passed_ = 0;  // of the entry
  std::vector<std::uint8_t> range_;
  std::vector<std::uint8_t> given_;
};

}  // namespace quendle::modules
