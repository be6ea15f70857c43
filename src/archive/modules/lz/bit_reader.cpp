#include "archive/modules/lz/bit_reader.h"

#include <algorithm>

namespace quendle::modules {

void BitReader::Begin(PackedSource* source) {
  source_ = source;
  before_ = 0;
  end_ = 0;
  missing_ = 0;
  cursor_ = {};
  cursor_.next_ = buffer_.data();
}

BitCursor BitReader::Lend(std::uint64_t end) const {
  BitCursor cursor = cursor_;
  const std::uint64_t bytes = std::min<std::uint64_t>(end_, end / 8 - std::min(end / 8, before_));
  cursor.limit_ = buffer_.data() + (bytes < BitCursor::kMargin ? 0 : bytes - BitCursor::kMargin);
  return cursor;
}

void BitReader::RefillSlowly() {
  std::size_t next = Next();
  if (source_ != nullptr) {
    std::copy(buffer_.data() + next, buffer_.data() + end_, buffer_.data());
    before_ += next;
    end_ -= next;
    next = 0;
    while (source_ != nullptr && end_ < sizeof(std::uint64_t)) {
      const std::size_t got = source_->Read(buffer_.data() + end_, buffer_.size() - end_);
      end_ += got;
      if (got == 0) source_ = nullptr;
    }
  }
  // Not 64: Refill shifts by as many as there are.
  while (cursor_.available_ < 56) {
    std::uint64_t byte = 0;
    if (next < end_) {
      byte = buffer_[next++];
    } else {
      ++before_;
      missing_ += 8;
    }
    cursor_.bits_ |= byte << (56 - cursor_.available_);
    cursor_.available_ += 8;
  }
  cursor_.next_ = buffer_.data() + next;
}

}  // namespace quendle::modules
