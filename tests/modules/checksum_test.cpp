#include "archive/modules/common/checksum.h"

namespace quendle::modules {
namespace {

// The figures that the checks are known by, and any division into pieces gives the same.
GTEST_TEST(Checksum, AgreesWithTheKnownFigures) {
  const std::string text = "123456789123456789123456789";
  for (std::size_t cut = 0; cut <= text.size(); ++cut) {
    Crc16Sum short_sum, whole_16, parts_16;
    Crc32Sum long_sum;
    short_sum.Add(std::string_view(text).substr(0, 9));
    long_sum.Add(std::string_view(text).substr(0, 9));
    EXPECT_EQ(short_sum.Value(), 0xBB3DU);
    EXPECT_EQ(long_sum.Value(), 0xCBF43926U);
    for (const char c : text) whole_16.Add({&c, 1});
    parts_16.Add(std::string_view(text).substr(0, cut));
    parts_16.Add(std::string_view(text).substr(cut));
    EXPECT_EQ(parts_16.Value(), whole_16.Value()) << cut;
  }
}

}  // namespace
}  // namespace quendle::modules
