#include "archive/modules/lzh/window_unpacker.h"

#include <utility>

namespace quendle::modules {

WindowUnpacker::WindowUnpacker(std::unique_ptr<WindowSymbols> symbols, std::uint64_t size)
    : symbols_(std::move(symbols)), size_(size) {
  window_.fill(' ');  // may be repeated before anything was made
}

std::size_t WindowUnpacker::Read(char* buffer, std::size_t size) {
  std::size_t got = 0;
  while (got < size && made_ < size_ && (made_ < repeats_until_ || Advance())) {
    const char byte = made_ < repeats_until_ ? window_[(made_ - back_) % kWindow] : byte_;
    window_[made_ % kWindow] = byte;
    buffer[got++] = byte;
    ++made_;
  }
  return got;
}

bool WindowUnpacker::Advance() {
  constexpr unsigned kNoLength = 253;
  const unsigned code = symbols_->NextCode();
  const bool repeats = code > 0xFF;
  const unsigned position = repeats ? symbols_->NextPosition(made_) : 0;
  if (!symbols_->ok()) return false;
  if (repeats) {
    back_ = std::uint64_t{position} + 1;
    repeats_until_ = made_ + code - kNoLength;
  } else {
    byte_ = static_cast<char>(code);
  }
  return true;
}

}  // namespace quendle::modules
