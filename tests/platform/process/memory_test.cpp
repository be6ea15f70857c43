#include "platform/process/memory.h"

namespace quendle::platform {
namespace {

// The largest number would say that nobody knows, a small one that units were mixed up.
GTEST_TEST(Memory, IsSomeOfWhatMachinesHave) {
  EXPECT_GT(AvailableMemory(), std::uint64_t{16} << 20);
  EXPECT_LT(AvailableMemory(), std::uint64_t{1} << 50);
}

}  // namespace
}  // namespace quendle::platform
