#include "archive/modules/rar/unpack/filter_queue.h"

#include <algorithm>
#include <utility>

namespace quendle::modules {

void FilterQueue::Begin() {
  pending_.clear();
  range_.clear();
  passed_ = 0;
}

bool FilterQueue::Add(std::uint64_t start, std::size_t length, std::unique_ptr<Filter> filter) {
  if (pending_.size() == kMostPending || start < passed_ - range_.size()) return false;
  if (length == 0) return true;
  bool is_same_range = false;
  if (!pending_.empty()) {
    const Pending& last = pending_.back();
    is_same_range = start == last.start && length == last.length;
    if (!is_same_range && (start < last.start || start - last.start < last.length)) return false;
  }
  in_last_range_ = is_same_range ? in_last_range_ + 1 : 1;
  if (in_last_range_ > kMostInRange) return false;
  pending_.push_back({start, length, std::move(filter)});
  return true;
}

bool FilterQueue::Pass(std::string_view* raw, std::string_view* out) {
  *out = {};
  if (raw->empty()) return true;
  const bool is_in_range = !pending_.empty() && pending_.front().start <= passed_;
  std::size_t count = raw->size();
  if (is_in_range) {
    count = std::min(count, pending_.front().length - range_.size());
    range_.insert(range_.end(), raw->begin(), raw->begin() + static_cast<std::ptrdiff_t>(count));
  } else {
    if (!pending_.empty())
      count = static_cast<std::size_t>(std::min<std::uint64_t>(count, pending_.front().start - passed_));
    *out = raw->substr(0, count);
  }
  raw->remove_prefix(count);
  passed_ += count;
  if (!is_in_range || range_.size() < pending_.front().length) return true;
  if (!RunFront()) return false;
  *out = {reinterpret_cast<const char*>(given_.data()), given_.size()};
  return true;
}

// All filters of the range that is complete.
bool FilterQueue::RunFront() {
  const std::uint64_t start = pending_.front().start;
  given_.swap(range_);
  range_.clear();
  while (!pending_.empty() && pending_.front().start == start) {
    const Pending front = std::move(pending_.front());
    pending_.pop_front();
    if (!front.filter->Run(start, &given_)) return false;
  }
  return true;
}

}  // namespace quendle::modules
