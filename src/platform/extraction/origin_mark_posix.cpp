#include "platform/extraction/origin_mark.h"

namespace quendle::platform {

std::string ReadOriginMark(const std::string& /*path*/) {
  return "";
}

void WriteOriginMark(const OpenFolder& /*folder*/, const std::string& /*name*/, const std::string& /*mark*/) {
}

}  // namespace quendle::platform
