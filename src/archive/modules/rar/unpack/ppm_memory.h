// The memory of a PPM model. A model begins anew when it is used up, for whoever packs and whoever unpacks at the same
// symbol: in what order blocks are given out and joined again is part of the format.
//
// It is one piece of the size that the archive says, up to 256 MiB. The system gives pages of it when they are first
// written to, on Linux and on Windows, and the model only writes to the text from the bottom on and to contexts from
// the border and from the top on: a small entry that claims much gets little.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "archive/modules/rar/unpack/ppm_contexts.h"

namespace quendle::modules {

class PpmMemory {
 public:
  // Empties it and makes it `size` bytes long: whole MiB, 256 at most. False: the system does not have that much.
  bool Reset(std::size_t size);

  // Empties it.
  void Clear();

  // What lies at an address that was given out.
  template <typename Thing>
  Thing* At(PpmAddress address) const {
    return reinterpret_cast<Thing*>(bytes_.get() + address);
  }
  // The address of something that lies here.
  PpmAddress AddressOf(const void* thing) const {
    return static_cast<PpmAddress>(static_cast<const std::uint8_t*>(thing) - bytes_.get());
  }

  // The bytes that were decoded, from address 0 to TextEnd().
  PpmAddress TextEnd() const { return text_end_; }
  bool IsText(PpmAddress address) const { return address < text_end_; }
  // Appends a byte. False: the memory is used up.
  bool AppendText(std::uint8_t byte) {
    bytes_[text_end_++] = byte;
    return text_end_ < units_;
  }
  // Takes the last byte away again.
  void ShortenText() { --text_end_; }

  // May a context or list be there, or is it one of text, or none?
  bool IsUnit(PpmAddress address) const { return address >= units_; }

  // The address of what is new, 0: the memory is used up. It is for the caller to write to all of it.
  PpmAddress NewContext();
  PpmAddress NewList(unsigned symbols) { return NewBlock(ClassOfList(symbols)); }

  // Makes room for one symbol more in a list of `symbols`, 2 or more. The new address; 0: the memory is used up.
  PpmAddress GrowList(PpmAddress list, unsigned symbols);
  // Keeps the first `left` of the list's symbols, 2 or more. The new address.
  PpmAddress ShrinkList(PpmAddress list, unsigned symbols, unsigned left);
  void FreeList(PpmAddress list, unsigned symbols) { Free(list, ClassOfList(symbols)); }

 private:
  // Everything is in units of the size of a context, and blocks are of 38 sizes.
  static constexpr std::size_t kClasses = 38;
  static constexpr unsigned kLargest = 128;  // units of a block

  // A block that is free. `mark` is nothing that a context or a list begins with.
  struct FreeBlock {
    static constexpr std::uint16_t kMark = 0;
    std::uint16_t mark;
    std::uint16_t units;
    PpmAddress next;
  };

  struct Freed {
    void operator()(std::uint8_t* bytes) const { std::free(bytes); }
  };

  static unsigned ClassOfList(unsigned symbols);
  PpmAddress NewBlock(std::size_t size_class);
  PpmAddress NewBlockRarely(std::size_t size_class);
  PpmAddress TakeFree(std::size_t size_class);
  void Free(PpmAddress block, std::size_t size_class);
  void FreeUnits(PpmAddress block, unsigned units);
  PpmAddress ChainFree();
  void MergeWithNext(FreeBlock* block);
  void JoinFree();

  std::unique_ptr<std::uint8_t[], Freed> bytes_;
  std::size_t capacity_ = 0;  // of them
  PpmAddress end_ = 0;        // of the memory
  PpmAddress text_end_ = 0;
  PpmAddress units_ = 0;     // the border between text and units; it falls when there is no other room
  PpmAddress low_ = 0;       // between these two no unit was given out yet: lists are taken from below,
  PpmAddress high_ = 0;      // contexts from above
  unsigned until_join_ = 0;  // how often to go on without joining free blocks
  std::array<PpmAddress, kClasses> free_{};  // by class, the last freed block first
};

}  // namespace quendle::modules
