#include "archive/modules/rar/unpack/bit_reader.h"

#include <algorithm>

namespace quendle::modules {

void BitReader::Begin(PackedSource* source) {
  source_ = source;
  bits_ = 0;
  available_ = missing_ = 0;
  next_ = end_ = 0;
  before_ = 0;
}

void BitReader::RefillSlowly() {
  if (source_ != nullptr && end_ - next_ < sizeof(bits_)) {
    std::copy(buffer_.begin() + static_cast<std::ptrdiff_t>(next_),
              buffer_.begin() + static_cast<std::ptrdiff_t>(end_), buffer_.begin());
    before_ += next_;
    end_ -= next_;
    next_ = 0;
    while (source_ != nullptr && end_ < sizeof(bits_)) {
      const std::size_t got = source_->Read(buffer_.data() + end_, buffer_.size() - end_);
      end_ += got;
      if (got == 0) source_ = nullptr;
    }
  }
  while (available_ <= 56) {
    std::uint64_t byte = 0;
    if (next_ < end_) {
      byte = buffer_[next_++];
    } else {
      ++before_;
      missing_ += 8;
    }
    bits_ |= byte << (56 - available_);
    available_ += 8;
  }
}

}  // namespace quendle::modules
