#include "archive/modules/rar/unpack/window.h"

#include <algorithm>
#include <limits>

#include "platform/process/memory.h"

namespace quendle::modules {
namespace {

constexpr std::size_t kMostReserved = 1U << 20;
constexpr std::size_t kFirstCapacity = 1U << 20;
// Up to here the memory is there. Beyond it a system may promise more than it has.
constexpr std::size_t kUnasked = 256U << 20;

}  // namespace

void Window::Reset(std::uint64_t size) {
  size_ = written_ = lost_ = 0;
  position_ = 0;
  full_ = 0;
  Grow(size);
  // Memory is kept for the next entries, but must not be more than they are meant to have.
  capacity_ = std::min(capacity_, full_);
}

void Window::Grow(std::uint64_t size) {
  if (size <= size_) return;
  // Once it is full the oldest byte is at the position; in a larger one it has to be the first.
  if (written_ - lost_ > position_) {
    std::uint8_t* const bytes = bytes_.get();
    std::rotate(bytes, bytes + position_, bytes + capacity_);
    position_ = capacity_;
    lost_ = written_ - capacity_;
  }
  size_ = size;
  // Behind the reach of matches there is room for what is reserved, and for what Copy writes too many.
  constexpr std::uint64_t kMost = std::numeric_limits<std::size_t>::max() / 4;
  full_ = static_cast<std::size_t>(std::min(size, kMost)) + 2 * kMostReserved;
}

bool Window::Reserve(std::size_t count) {
  if (capacity_ == full_ && full_ > 0 && position_ < capacity_) return true;
  if (position_ + count < capacity_) return true;
  const std::size_t wanted = std::max({position_ + count + 1, 2 * capacity_, kFirstCapacity});
  return Enlarge(std::min(wanted, full_));
}

bool Window::Enlarge(std::size_t capacity) {
  if (capacity > capacity_) {
    if (capacity > kUnasked && capacity - capacity_ > platform::AvailableMemory()) return false;
    auto* const larger = static_cast<std::uint8_t*>(std::realloc(bytes_.get(), capacity));
    if (larger == nullptr) return false;
    static_cast<void>(bytes_.release());
    bytes_.reset(larger);
    capacity_ = capacity;
  }
  if (position_ == capacity_) position_ = 0;
  return true;
}

WindowCursor Window::Lend(std::uint64_t count) {
  constexpr std::size_t kBehindLimit = WindowCursor::kMostAtOnce + kMatchSlack;
  const std::size_t room = capacity_ - position_ < kBehindLimit ? 0 : capacity_ - position_ - kBehindLimit;
  WindowCursor cursor;
  cursor.window_ = this;
  cursor.bytes_ = bytes_.get();
  cursor.to_ = cursor.bytes_ + position_;
  cursor.limit_ = cursor.to_ + std::min<std::uint64_t>(count, room);
  return cursor;
}

void Window::TakeBack(const WindowCursor& cursor) {
  const auto position = static_cast<std::size_t>(cursor.to_ - bytes_.get());
  written_ += position - position_;
  position_ = position;
}

// A cursor's copy at `to`, of what is left from before the window began anew. Where the cursor goes on: at `to` if the
// distance is out of reach.
std::uint8_t* Window::CopyFromWrapped(std::uint8_t* to, std::uint64_t distance, std::size_t length) {
  const auto position = static_cast<std::size_t>(to - bytes_.get());
  written_ += position - position_;
  position_ = position;
  Copy(distance, length);
  return bytes_.get() + position_;
}

void Window::CopyByBytes(std::size_t from, std::size_t length) {
  for (; length > 0; --length) {
    Put(bytes_.get()[from]);
    if (++from == capacity_) from = 0;
  }
}

std::string_view Window::Piece(std::uint64_t from, std::uint64_t to) const {
  const auto back = static_cast<std::size_t>(written_ - from);
  const std::size_t begin = position_ - back + (position_ < back ? capacity_ : 0);
  const std::size_t length = std::min(static_cast<std::size_t>(to - from), capacity_ - begin);
  return {reinterpret_cast<const char*>(bytes_.get()) + begin, length};
}

}  // namespace quendle::modules
