// What was unpacked last, which matches repeat from. Its memory grows with what is unpacked, not with what a header says.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "archive/modules/lz/match_copy.h"

namespace quendle::modules {

class WindowCursor;

class Window {
 public:
  // Forgets everything; from now on matches reach `size` bytes back at most.
  void Reset(std::uint64_t size);

  // Matches may reach further back, to what there still is. Never less far than before. Reserve is needed
  // again.
  void Grow(std::uint64_t size);

  // Makes room for `count` more bytes, a mebibyte at most; the same number of bytes before them can still be had from
  // Piece. Needed before each Put, Copy and Lend. False: there is not so much memory.
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
    if (from + length + kMatchSlack > capacity_ || position_ + length + kMatchSlack > capacity_) {
      CopyByBytes(from, length);
      return true;
    }
    // What the slack overwrites is older than matches reach.
    CopyMatch(bytes_.get() + position_, bytes_.get() + from, back, length);
    position_ += length;
    written_ += length;
    return true;
  }

  // Bytes since Reset.
  std::uint64_t Written() const { return written_; }

  // The bytes from number `from` on up to number `to`, which were written and not yet reserved over, as far as they lie
  // behind each other in memory. Valid until the next Reserve, Put or Copy.
  std::string_view Piece(std::uint64_t from, std::uint64_t to) const;

  // A cursor at this place, which has room for `count` bytes at most. Nothing else is done with the window until it is
  // given back.
  WindowCursor Lend(std::uint64_t count);
  void TakeBack(const WindowCursor& cursor);

 private:
  friend class WindowCursor;

  struct Free {
    void operator()(std::uint8_t* bytes) const { std::free(bytes); }
  };

  std::uint8_t* CopyFromWrapped(std::uint8_t* to, std::uint64_t distance, std::size_t length);
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

// A place in a window, for the hot loops: nothing points to it, so that the compiler keeps it in registers.
class WindowCursor {
 public:
  // How many bytes a loop may write between two looks at HasRoom.
  static constexpr std::size_t kMostAtOnce = 8U << 10;

  bool HasRoom() const { return to_ < limit_; }

  void Put(std::uint8_t byte) { *to_++ = byte; }

  // As that of Window, but `length` is not 0.
  bool Copy(std::uint64_t distance, std::size_t length) {
    // As much lies in front of the place, and was written.
    if (distance - 1 < static_cast<std::size_t>(to_ - bytes_) && distance <= window_->size_) {
      CopyMatch(to_, to_ - distance, distance, length);
      to_ += length;
      return true;
    }
    std::uint8_t* const begin = to_;
    to_ = window_->CopyFromWrapped(begin, distance, length);
    return to_ != begin;
  }

 private:
  friend class Window;

  Window* window_ = nullptr;
  std::uint8_t* bytes_ = nullptr;
  std::uint8_t* to_ = nullptr;
  std::uint8_t* limit_ = nullptr;
};

}  // namespace quendle::modules
