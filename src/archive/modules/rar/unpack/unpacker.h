// Unpacking the entries of a RAR archive. Each way of packing is a class of its own below this one, which has what they share:
// packed bits, a window, filters on the way out.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "archive/modules/common/entry_reader.h"
#include "archive/modules/lz/bit_reader.h"
#include "archive/modules/lz/window.h"
#include "archive/modules/rar/unpack/filter_queue.h"

namespace quendle::modules {

// What is to be known of an entry to unpack it.
struct PackedEntry {
  std::optional<std::uint64_t> size;  // unpacked; none: only a mark in the packed data ends it
  bool is_solid = false;              // it goes on with what the entry before it left
  std::uint64_t window = 0;  // how far back matches reach, as the header says; not all ways look at that
  bool has_far_distances = false;  // of RAR 7
};

class Unpacker {
 public:
  virtual ~Unpacker() = default;

  // Begins an entry. `packed` outlives its unpacking.
  void Begin(PackedSource* packed, const PackedEntry& entry);

  // The next bytes, never none, valid until the next call. kEnd: the packed data have ended as they should; whether
  // the bytes are the right ones and enough only the entry's header tells. Anything else: Problem() says why. One that is
  // followed by solid ones is to be read to its end.
  ReadStatus Read(std::string_view* piece);

  const Reason& Problem() const { return problem_; }

 protected:
  enum class Step {
    kMore,         // as much as was asked for
    kEnd,          // behind the entry's last byte
    kDamaged,      // what comes is nothing that a packer makes
    kUnsupported,  // ... or nothing that is known here; problem_ says what
  };

  // For an entry that begins: the state of the one before it is to be forgotten, if it is not solid.
  virtual void BeginEntry(const PackedEntry& entry) = 0;

  // Unpacks into the window until `until` bytes are Made() or the entry ends. At most one match more than that, of 8 KiB
  // at most. Called until it says other than kMore; behind the entry's size only to find its mark.
  virtual Step Decode(std::uint64_t until) = 0;

  // For ways of packing without a mark at an entry's end: takes what else belongs to the entry, all bytes of which are made.
  // With a mark: nullopt, and it is looked for by Decode.
  virtual std::optional<Step> EndWithoutMark() { return std::nullopt; }

  // Bytes of this entry so far.
  std::uint64_t Made() const { return window_.Written() - start_; }
  std::optional<std::uint64_t> Size() const { return entry_.size; }

  BitReader bits_;
  Window window_;
  FilterQueue filters_;
  Reason problem_;

 private:
  bool GiveMade(std::string_view* piece);
  void DecodeMore();
  void Settle(Step step);

  PackedSource* packed_ = nullptr;
  PackedEntry entry_;
  std::uint64_t start_ = 0;   // of the entry in the window
  std::uint64_t passed_ = 0;  // of its bytes, to the filters
  std::uint64_t given_ = 0;   // what these made of them
  ReadStatus status_ = ReadStatus::kEnd;
};

}  // namespace quendle::modules
