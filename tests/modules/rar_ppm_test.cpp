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

// Makes up data of the range decoder that it takes for long: 72,105 symbols, over which the memory is used up twice.
// Other decoders make the same of them.
GTEST_TEST(PpmModel, BeginsAnewWhenItsMemoryIsUsedUp) {
  std::mt19937 random(1681);
  std::string packed(30000, '\0');
  for (char& byte : packed) byte = static_cast<char>(0x60 + (random() >> 8) % 0x40);
  PpmModel model;
  const std::string decoded = Decoded(&model, 64, 1, packed, -1);
  EXPECT_EQ(decoded.size(), 72105U);
  EXPECT_EQ(Crc32(decoded), 0x6F815A12);
}

}  // namespace
}  // namespace quendle::modules
