// What was unpacked last, which matches repeat from. Its memory grows with what is unpacked, not with what a header says.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>

namespace quendle::modules {

class Window {
 public:
  // Forgets everything; from now on matches reach `size` bytes back at most.
  void Reset(std::uint64_t size);

  // Matches may reach further back, to what there still is. Never less far than before.
  void Grow(std::uint64_t size);

  // Makes room for `count` more bytes, a mebibyte at most; the same number of bytes before them can still be had from
  // Piece. Needed before each Put and Copy. False: there is not so much memory.
  bool Reserve(std::size_t count);

  void Put(std::uint8_t byte) {
    bytes_.get()[position_++] = byte;
    ++written_;
    if (position_ == capacity_) position_ = 0;
  }

  // Repeats `length` bytes from `distance` back, into themselves when that is less. False, and nothing is done, when it
  // is 0, or further back than matches may reach or anything was written.
  bool Copy(std::uint64_t distance, std::size_t length) {
    if (distance - 1 >= written_ - lost_ || distance > size_) return false;
    const auto back = static_cast<std::size_t>(distance);
    const std::size_t from = position_ - back + (position_ < back ? capacity_ : 0);
    if (from + length + kSlack > capacity_ || position_ + length + kSlack > capacity_) {
      CopyByBytes(from, length);
      return true;
    }
    std::uint8_t* to = bytes_.get() + position_;
    const std::uint8_t* source = bytes_.get() + from;
    position_ += length;
    written_ += length;
    if (back >= kSlack) {
      // Up to kSlack - 1 bytes too many: what they overwrite is older than matches reach.
      for (const std::uint8_t* const end = to + length; to < end; to += kSlack, source += kSlack)
        std::memcpy(to, source, kSlack);
    } else if (back == 1) {
      std::memset(to, *source, length);
    } else {
      for (std::size_t i = 0; i < length; ++i) to[i] = source[i];
    }
    return true;
  }

  // Bytes since Reset.
  std::uint64_t Written() const { return written_; }

  // The bytes from number `from` on up to number `to`, which were written and not yet reserved over, as far as they lie
  // behind each other in memory. Valid until the next Reserve, Put or Copy.
  std::string_view Piece(std::uint64_t from, std::uint64_t to) const;

 private:
  static constexpr std::size_t kSlack = 16;

  struct Free {
    void operator()(std::uint8_t* bytes) const { std::free(bytes); }
  };

  void CopyByBytes(std::size_t from, std::size_t length);
  bool Enlarge(std::size_t capacity);

  std::unique_ptr<std::uint8_t, Free> bytes_;
  std::size_t capacity_ = 0;  // of them
  std::size_t full_ = 0;      // what that may become
  std::size_t position_ = 0;  // of the next byte in them; begins again at 0 only when they are full
  std::uint64_t size_ = 0;
  std::uint64_t written_ = 0;
  std::uint64_t lost_ = 0;  // of these, before the window grew
};

}  // namespace quendle::modules
