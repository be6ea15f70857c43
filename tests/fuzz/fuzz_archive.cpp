// Whole archives of one family, FUZZ_FAMILY.
#include FUZZ_FAMILY_HEADER
#include "fuzz_family.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  quendle::modules::ReadEverything(quendle::modules::FUZZ_FAMILY, data, size);
  return 0;
}
