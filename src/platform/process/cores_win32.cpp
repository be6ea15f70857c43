#include <windows.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <thread>

#include "platform/process/cores.h"

namespace quendle::platform {

unsigned UsableCores() {
  DWORD_PTR own = 0;
  DWORD_PTR all = 0;
  // No cores at all is the answer where the process spans several groups of them.
  if (GetProcessAffinityMask(GetCurrentProcess(), &own, &all) != 0 && own != 0)
    return static_cast<unsigned>(std::popcount(std::uint64_t{own}));
  return std::max(std::thread::hardware_concurrency(), 1U);
}

}  // namespace quendle::platform
