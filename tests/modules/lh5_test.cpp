#include "archive/modules/lzh/lh5_unpacker.h"

#include <algorithm>

#include "support/archives.h"
#include "support/rar_encoder.h"

namespace quendle::modules {
namespace {

// Blocks whose codes have 9 bits for literals and lengths, and 5 for distances.
class Lh5Blocks {
 public:
  explicit Lh5Blocks(Lh5Form form) : form_(form) {}

  Lh5Blocks& Begin(unsigned symbols) {
    bits_.Put(symbols, 16).Put(19, 5);
    for (unsigned i = 0; i < 19; ++i) {
      bits_.Put(5, 3);
      if (i == 2) bits_.Put(0, 2);
    }
    bits_.Put(510, 9);
    for (unsigned i = 0; i < 510; ++i) bits_.Put(9 + 2, 5);
    bits_.Put(form_.window_bits + 1, form_.distance_bits);
    for (unsigned i = 0; i <= form_.window_bits; ++i) bits_.Put(5, 3);
    return *this;
  }
  // A block of one symbol only, and of one distance slot.
  Lh5Blocks& Only(unsigned symbols, unsigned symbol, unsigned slot) {
    bits_.Put(symbols, 16).Put(0, 5).Put(0, 5).Put(0, 9).Put(symbol, 9);
    bits_.Put(0, form_.distance_bits).Put(slot, form_.distance_bits);
    return *this;
  }
  Lh5Blocks& Text(std::string_view text) {
    for (const char c : text) bits_.Put(static_cast<unsigned char>(c), 9);
    return *this;
  }
  Lh5Blocks& Match(unsigned distance, unsigned length) {
    bits_.Put(length + 253, 9);
    const unsigned value = distance - 1;
    const auto slot = static_cast<unsigned>(std::bit_width(value));
    bits_.Put(slot, 5);
    if (slot > 1) bits_.Put(value - (1U << (slot - 1)), slot - 1);
    return *this;
  }
  const std::string& Bytes() const { return bits_.Bytes(); }

 private:
  const Lh5Form form_;
  test::PackedBits bits_;
};

std::string Unpack(const std::string& packed, Lh5Form form, std::size_t size, std::size_t at_once) {
  const test::TempFolder folder;
  test::WriteFile(folder / "a", packed);
  const ArchiveInput input(test::Opened(folder / "a"), 0);
  PackedBytes bytes(input, 0, packed.size());
  Lh5Unpacker unpacker(&bytes, form);
  std::string content;
  std::string piece(at_once, '\0');
  while (content.size() < size) {
    const std::size_t got = unpacker.Read(piece.data(), std::min(at_once, size - content.size()));
    if (got == 0) break;
    content.append(piece, 0, got);
  }
  return content;
}

GTEST_TEST(Lh5, UnpacksBlocksOfAllMethods) {
  for (const char* method : {"-lh4-", "-lh5-", "-lh6-", "-lh7-"}) {
    SCOPED_TRACE(method);
    const Lh5Form form = *Lh5FormOf(method);
    const unsigned window = 1U << form.window_bits;
    Lh5Blocks blocks(form);
    blocks.Begin(6).Match(window, 3).Text("abc").Match(window, 5).Match(6, 3);
    std::string text = "   abc     ";
    text += text.substr(5, 3);
    blocks.Only(300, 'x', 0);
    text += std::string(300, 'x');
    blocks.Only(2, 256 + 10, 1);
    for (int i = 0; i < 26; ++i) text += text[text.size() - 2];
    // For one method long enough that the window begins anew in memory, and matches reach over that.
    const unsigned matches = form.window_bits == 13 ? 30'000 : 1'000;
    blocks.Begin(2 * matches);
    for (unsigned i = 0; i < matches; ++i) {
      const unsigned distance = i % 3 == 0 ? 1 + 7 * i % window : 1 + i % 300;
      const unsigned length = 3 + i % 200;
      blocks.Text("A").Match(distance, length);
      text += 'A';
      for (unsigned k = 0; k < length; ++k)
        text += distance > text.size() ? ' ' : text[text.size() - distance];
    }
    for (const std::size_t at_once : {std::size_t{1} << 20, std::size_t{1000}})
      EXPECT_TRUE(Unpack(blocks.Bytes(), form, text.size(), at_once) == text) << at_once;
  }
  EXPECT_FALSE(Lh5FormOf("-lh1-"));
}

GTEST_TEST(Lh5, EndsWhereNothingFitsAnyMore) {
  const Lh5Form form = *Lh5FormOf("-lh5-");
  const std::string whole = Lh5Blocks(form).Begin(3).Text("abc").Bytes();
  const auto unpack = [&](const std::string& packed) { return Unpack(packed, form, 100, 100); };
  EXPECT_EQ(unpack(whole).substr(0, 3), "abc");
  EXPECT_LT(unpack(whole.substr(0, whole.size() - 3)).size(), 3U);
  EXPECT_EQ(unpack(""), "");
  EXPECT_EQ(unpack(std::string(1000, '\0')), "") << "blocks of nothing";
  EXPECT_EQ(unpack(std::string(1000, '\xFF')), "") << "more lengths than symbols";
  EXPECT_EQ(unpack(Lh5Blocks(form).Only(3, 511, 0).Bytes()), "") << "a symbol that is none";
  EXPECT_EQ(unpack(Lh5Blocks(form).Only(3, 256, 15).Bytes()), "") << "a distance that is none";
}

}  // namespace
}  // namespace quendle::modules
