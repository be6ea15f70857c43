#include <random>

#include "archive/modules/common/checksum.h"
#include "archive/modules/rar/unpack/ppm_model.h"
#include "support/rar_encoder.h"

namespace quendle::modules {
namespace {

// What a new model decodes from the bytes, up to the first `end`, or to where they are damaged.
std::string Decoded(PpmModel* model, unsigned order, std::size_t mebibytes, std::string_view packed,
                    int end) {
  test::StringSource source(packed);
  BitReader bits;
  bits.Begin(&source);
  RangeDecoder decoder;
  decoder.Begin(&bits);
  std::string decoded;
  if (!model->Restart(order, mebibytes << 20)) return "no memory";
  for (int symbol = 0; symbol != end && (symbol = model->Decode(&decoder)) >= 0;)
    decoded.push_back(static_cast<char>(symbol));
  return decoded;
}

// The stream of an entry that RAR 3 made from one line of text, behind the three bytes that begin its block.
GTEST_TEST(PpmModel, DecodesAndTellsWhereDataEnd) {
  const std::string packed(
      "\x55\x1c\x14\x70\xb7\x0c\x93\x73\x2d\xb5\xc8\xa2\xd4\x5a\x3e\x06\xdc\x07\x06\xe5\x97\xdd\x43\x14"
      "\x15\x82\x3d\xbf\x17\x8b\xed\xe7\x96\xd2\x2c\x76\x2f\x63\xc4\x79\x5f\x41\xf3\x05\xe1\xa1\xae\xa3"
      "\x1c\x07\x72\x08\x1b\xdb\x10\x26\xd1\xcf\xd2\x01\x68\xdf\x99\xef\x39\x91\x97\xa6\x9a\x10\x4f\xf3"
      "\x84\x34\xa4\x97\xaa\x1a\x08\x10\xd0\x0b\xd7\x9c\x97\x6f\x79\x64\x12\x2d\x25\xbc\x32\x54\x00",
      95);
  PpmModel model;
  EXPECT_FALSE(model.HasModel());
  const std::string line = Decoded(&model, 4, 15, packed, 0xFF);
  EXPECT_TRUE(model.HasModel());
  EXPECT_EQ(line.size(), 108U);
  EXPECT_EQ(Crc32(std::string_view(line).substr(0, 107)), 0x8EAF20C4);
  EXPECT_EQ(Decoded(&model, 4, 1, packed, 0xFF), line)
      << "with less memory, and nothing left of what was before";
  for (std::size_t size = 0; size < packed.size(); ++size) {
    const std::string part = Decoded(&model, 4, 1, packed.substr(0, size), -1);
    EXPECT_LE(part.size(), line.size() + 1) << size;  // what the escape says, too
    EXPECT_FALSE(model.HasModel()) << size;
  }
  EXPECT_EQ(Decoded(&model, 64, 256, std::string(100, '\xFF'), -1), "") << "a share that nothing has";
}

// Data made up so that the range decoder takes them for long. With order 64 the memory is used up twice; with order 3 contexts
// are often as long as they can be. Other decoders make the same of them.
GTEST_TEST(PpmModel, DecodesMadeUpData) {
  struct Row {
    unsigned order;
    unsigned seed;
    std::size_t size;
    std::uint32_t sum;
  };
  for (const Row& row : {Row{64, 1681, 72105, 0x6F815A12}, Row{3, 366, 76994, 0x003B2CCE}}) {
    std::mt19937 random(row.seed);
    std::string packed(30000, '\0');
    for (char& byte : packed) byte = static_cast<char>(0x60 + (random() >> 8) % 0x40);
    PpmModel model;
    const std::string decoded = Decoded(&model, row.order, 1, packed, -1);
    EXPECT_EQ(decoded.size(), row.size) << row.order;
    EXPECT_EQ(Crc32(decoded), row.sum) << row.order;
  }
}

// Fills the memory with lists, changes and frees some, and fills what that left with shorter or longer ones, over many joins of
// free blocks. The sum is of all addresses; with them megabytes were decoded as other decoders do.
GTEST_TEST(PpmMemory, GivesOutTheBlocksOfTheFormat) {
  PpmMemory memory;
  ASSERT_TRUE(memory.Reset(1U << 20));
  for (int i = 0; i < 100; ++i) ASSERT_TRUE(memory.AppendText(0));  // whole units up to the border
  std::mt19937 random(1);
  std::vector<std::pair<PpmAddress, unsigned>> lists;
  Crc32Sum sum;
  const auto add = [&](PpmAddress list, unsigned symbols) {
    sum.Add(std::to_string(list));
    if (list == 0) return false;
    *memory.At<PpmSymbol>(list) = {0, 1, {}};
    lists.emplace_back(list, symbols);
    return true;
  };
  for (unsigned longest : {16U, 255U, 40U, 3U, 120U}) {
    for (unsigned failed = 0; failed < 600;) {
      const unsigned symbols = 2 + static_cast<unsigned>(random()) % (longest - 2);
      if (!add(memory.NewList(symbols), symbols)) ++failed;
    }
    for (const auto& [list, symbols] : std::exchange(lists, {})) {
      const unsigned act = random() % 8;
      if (act == 0) {
        add(memory.ShrinkList(list, symbols, symbols / 2 + 1), symbols / 2 + 1);
      } else if (act > 1 || !add(memory.GrowList(list, symbols), symbols + 1)) {
        memory.FreeList(list, symbols);
      }
    }
  }
  EXPECT_EQ(sum.Value(), 0x8758542D);
}

}  // namespace
}  // namespace quendle::modules
