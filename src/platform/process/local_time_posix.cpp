#include "platform/process/local_time.h"

namespace quendle::platform {

// localtime() would look for changes of the time zone on the disk each time.
bool ToLocalTime(std::int64_t seconds, std::tm* local) {
  const std::time_t time = seconds;
  return localtime_r(&time, local) != nullptr;
}

}  // namespace quendle::platform
