#include <sched.h>

#include <algorithm>
#include <thread>

#include "platform/process/cores.h"

namespace quendle::platform {

unsigned UsableCores() {
  cpu_set_t cores;
  // Fails where there are more than the set has room for.
  if (sched_getaffinity(0, sizeof cores, &cores) == 0) return static_cast<unsigned>(CPU_COUNT(&cores));
  return std::max(std::thread::hardware_concurrency(), 1U);
}

}  // namespace quendle::platform
