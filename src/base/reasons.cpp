#include "base/reasons.h"

namespace quendle {

std::string InJapanese(std::string_view reason) {
  return std::string(reason);
}

}  // namespace quendle
