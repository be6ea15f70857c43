// Content that is packed as bytes and repetitions of what came in the last 8 KiB: -lh2- and -lh3-.
#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "archive/modules/lzh/lzh_unpacker.h"

namespace quendle::modules {

// What the two methods pack alike: a code is a byte (0 to 255) or says that 3 bytes (code 256) or more are
// repeated. The last code, 285, stands for 32 and what 8 more bits say.
constexpr unsigned kWindowCodes = 286;
constexpr unsigned kPositionCodes = 128;  // each stands for 64 positions

// The symbols of such content in turn. They differ in how they are coded.
class WindowSymbols {
 public:
  virtual ~WindowSymbols() = default;

  // A byte, or 253 more than the number of bytes that are repeated.
  virtual unsigned NextCode() = 0;
  // Behind a code for a repetition: how far back it begins, 0 being the last byte. `made`: bytes so far.
  virtual unsigned NextPosition(std::uint64_t made) = 0;
  // False when the packed data have ended, or are none of this kind.
  virtual bool ok() const = 0;
};

class WindowUnpacker final : public LzhUnpacker {
 public:
  // `size` of the content.
  WindowUnpacker(std::unique_ptr<WindowSymbols> symbols, std::uint64_t size);

  std::size_t Read(char* buffer, std::size_t size) override;

 private:
  static constexpr std::size_t kWindow = 8U << 10;

  // Takes the next symbol; false at the end.
  bool Advance();

  std::unique_ptr<WindowSymbols> symbols_;
  const std::uint64_t size_;
  std::uint64_t made_ = 0;
  std::uint64_t repeats_until_ = 0;   // of what is made
  std::uint64_t back_ = 0;            // to the byte that is repeated, from 1 on
  char byte_ = 0;                     // what comes when nothing is repeated
  std::array<char, kWindow> window_;  // byte n of the content is at n modulo its size
};

}  // namespace quendle::modules
