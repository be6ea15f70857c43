#include <random>

#include "archive/modules/common/checksum.h"
#include "archive/modules/rar/unpack/ppm_model.h"
#include "support/archives.h"
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
  const std::string packed = test::FromHex(
      "551c1470b70c93732db5c8a2d45a3e06dc0706e597dd431415823dbf178bede796d22c762f63c4795f41f305e1a1aea31c"
      "0772081bdb1026d1cfd20168df99ef399197a69a104ff38434a497aa1a0810d00bd79c976f7964122d25bc3254");
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
    EXPECT_LE(part.size(), line.size()) << size;
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
  EXPECT_EQ(Crc32(decoded), 0U);
}

}  // namespace
}  // namespace quendle::modules
