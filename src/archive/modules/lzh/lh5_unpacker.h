// Content that is packed in blocks of matches and literals by Huffman codes: -lh4-, -lh5-, -lh6- and -lh7-.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "archive/modules/lz/bit_reader.h"
#include "archive/modules/lz/huffman_code.h"
#include "archive/modules/lz/window.h"
#include "archive/modules/lzh/lzh_unpacker.h"

namespace quendle::modules {

// In what the methods differ.
struct Lh5Form {
  unsigned window_bits;    // matches reach so far back, as a power of two
  unsigned distance_bits;  // in which the number of distance codes is given
};

// "-lh5-" ⇒ 13 and 4; nothing for other methods.
std::optional<Lh5Form> Lh5FormOf(std::string_view method);

class Lh5Unpacker final : public LzhUnpacker {
 public:
  // `packed` outlives this object.
  Lh5Unpacker(PackedBytes* packed, Lh5Form form);

  std::size_t Read(char* buffer, std::size_t size) override;

 private:
  // A code that may be of one symbol only, which takes no bits then.
  struct Code {
    HuffmanCode code;
    std::optional<unsigned> only;

    template <typename Bits>
    unsigned Decode(Bits* bits) const {
      return only ? *only : code.Decode(bits);
    }
  };

  static constexpr std::size_t kMainSymbols = 510;
  static constexpr std::size_t kLengthSymbols = 19;

  bool DecodeMore();
  bool BeginBlock();
  bool ReadShortLengths(std::size_t symbols, unsigned bits, std::optional<std::size_t> gap, Code* code);
  bool ReadMainLengths();
  bool DecodeMany(std::uint64_t until);
  template <typename Bits, typename Output>
  bool DecodeSymbol(Bits* bits, Output* output) const;

  BitReader bits_;
  Window window_;
  const Lh5Form form_;
  Code lengths_;
  Code main_;
  Code distances_;
  unsigned block_left_ = 0;  // symbols
  std::uint64_t given_ = 0;  // of what is in the window
  bool is_over_ = false;
};

}  // namespace quendle::modules
