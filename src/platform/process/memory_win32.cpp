#include <windows.h>

#include <limits>

#include "platform/process/memory.h"

namespace quendle::platform {

std::uint64_t AvailableMemory() {
  MEMORYSTATUSEX status{};
  status.dwLength = sizeof(status);
  if (GlobalMemoryStatusEx(&status) == 0) return std::numeric_limits<std::uint64_t>::max();
  return status.ullAvailPhys;
}

}  // namespace quendle::platform
