#include "archive/modules/lzh/lh5_unpacker.h"

#include <algorithm>

namespace quendle::modules {
namespace {

constexpr std::uint64_t kStep = 64U << 10;
constexpr unsigned kFirstLength = 253;  // a main symbol behind the literals is this much more than its length
constexpr unsigned kLiterals = 256;

}  // namespace

std::optional<Lh5Form> Lh5FormOf(std::string_view method) {
  if (method == "-lh4-") return Lh5Form{12, 4};
  if (method == "-lh5-") return Lh5Form{13, 4};
  if (method == "-lh6-") return Lh5Form{15, 5};
  if (method == "-lh7-") return Lh5Form{16, 5};
  return std::nullopt;
}

// Before its beginning a content has blanks, which matches may repeat.
Lh5Unpacker::Lh5Unpacker(PackedBytes* packed, Lh5Form form) : form_(form) {
  const std::uint64_t size = std::uint64_t{1} << form.window_bits;
  bits_.Begin(packed);
  window_.Reset(size);
  is_over_ = !window_.Reserve(static_cast<std::size_t>(size));
  if (!is_over_) {
    window_.Put(' ');
    window_.Copy(1, static_cast<std::size_t>(size) - 1);
  }
  given_ = window_.Written();
}

std::size_t Lh5Unpacker::Read(char* buffer, std::size_t size) {
  while (given_ == window_.Written() && !is_over_) is_over_ = !DecodeMore();
  const std::string_view piece =
      window_.Piece(given_, std::min<std::uint64_t>(window_.Written(), given_ + size));
  given_ += piece.size();
  return piece.copy(buffer, size);
}

// False at the end of the packed bytes, and for what nobody packs.
bool Lh5Unpacker::DecodeMore() {
  if (!window_.Reserve(kStep + WindowCursor::kMostAtOnce)) return false;
  const std::uint64_t until = window_.Written() + kStep;
  while (window_.Written() < until) {
    if (block_left_ == 0 && !BeginBlock()) return false;
    if (!DecodeMany(until)) return false;
    if (block_left_ == 0 || window_.Written() >= until) continue;
    --block_left_;
    // The last bits may be a symbol's that takes none.
    if (!DecodeSymbol(&bits_, &window_) || bits_.IsPastEnd()) return false;
  }
  return true;
}

bool Lh5Unpacker::BeginBlock() {
  constexpr unsigned kLengthBits = 5;
  constexpr std::size_t kGap = 3;  // behind that many lengths two bits say how many are zero
  block_left_ = bits_.Take(16);
  const std::size_t distances = form_.window_bits + 1;
  return !bits_.IsPastEnd() && block_left_ > 0 &&
         ReadShortLengths(kLengthSymbols, kLengthBits, kGap, &lengths_) && ReadMainLengths() &&
         ReadShortLengths(distances, form_.distance_bits, std::nullopt, &distances_) && !bits_.IsPastEnd();
}

// Lengths of three bits, of which seven goes on in ones.
bool Lh5Unpacker::ReadShortLengths(std::size_t symbols, unsigned bits, std::optional<std::size_t> gap,
                                   Code* code) {
  std::array<std::uint8_t, 32> lengths{};
  const std::size_t count = bits_.Take(bits);
  code->only.reset();
  if (count == 0) {
    code->only = bits_.Take(bits);
    return *code->only < symbols;
  }
  if (count > symbols) return false;
  for (std::size_t i = 0; i < count;) {
    unsigned length = bits_.Take(3);
    while (length >= 7 && bits_.Take(1) == 1) {
      if (++length > HuffmanCode::kLongest) return false;
    }
    lengths[i++] = static_cast<std::uint8_t>(length);
    if (i == gap) i = std::min<std::size_t>(i + bits_.Take(2), count);
  }
  return code->code.Build(std::span(lengths).first(symbols));
}

bool Lh5Unpacker::ReadMainLengths() {
  constexpr unsigned kCountBits = 9;
  std::array<std::uint8_t, kMainSymbols> lengths{};
  const std::size_t count = bits_.Take(kCountBits);
  main_.only.reset();
  if (count == 0) {
    main_.only = bits_.Take(kCountBits);
    return *main_.only < kMainSymbols;
  }
  if (count > kMainSymbols) return false;
  for (std::size_t i = 0; i < count;) {
    const unsigned symbol = lengths_.Decode(&bits_);
    if (symbol == HuffmanCode::kNone || bits_.IsPastEnd()) return false;
    if (symbol > 2) {
      lengths[i++] = static_cast<std::uint8_t>(symbol - 2);
    } else {
      i += symbol == 0 ? 1 : symbol == 1 ? 3 + bits_.Take(4) : 20 + bits_.Take(9);
    }
  }
  return main_.code.Build(lengths);
}

// As many as can be without looking at each whether what is at hand of the packed bytes, or the window, ends.
bool Lh5Unpacker::DecodeMany(std::uint64_t until) {
  BitCursor bits = bits_.Lend(~std::uint64_t{0});
  WindowCursor output = window_.Lend(until - window_.Written());
  unsigned left = block_left_;
  bool is_ok = true;
  while (left > 0 && is_ok && bits.IsFarFromEnd() && output.HasRoom()) {
    --left;
    is_ok = DecodeSymbol(&bits, &output);
  }
  block_left_ = left;
  bits_.TakeBack(bits);
  window_.TakeBack(output);
  return is_ok;
}

template <typename Bits, typename Output>
[[gnu::always_inline]] inline bool Lh5Unpacker::DecodeSymbol(Bits* bits, Output* output) const {
  bits->Refill();
  const unsigned symbol = main_.Decode(bits);
  if (symbol < kLiterals) {
    output->Put(static_cast<std::uint8_t>(symbol));
    return true;
  }
  if (symbol == HuffmanCode::kNone) return false;
  const unsigned slot = distances_.Decode(bits);
  if (slot == HuffmanCode::kNone) return false;
  const std::uint64_t distance = slot < 2 ? slot : (std::uint64_t{1} << (slot - 1)) + bits->Take(slot - 1);
  return output->Copy(distance + 1, symbol - kFirstLength);
}

}  // namespace quendle::modules
