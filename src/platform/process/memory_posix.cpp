#include <fstream>
#include <limits>
#include <string>

#include "platform/process/memory.h"

namespace quendle::platform {

// sysconf counts what is free only, and not what the kernel keeps of files until somebody wants the memory.
std::uint64_t AvailableMemory() {
  std::ifstream info("/proc/meminfo");
  std::string name;
  std::uint64_t kilobytes = 0;
  while (info >> name >> kilobytes) {
    if (name == "MemAvailable:") return kilobytes << 10;
    info.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
  }
  return std::numeric_limits<std::uint64_t>::max();
}

}  // namespace quendle::platform
