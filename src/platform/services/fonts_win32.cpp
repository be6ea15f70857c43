#include "platform/services/fonts.h"

namespace quendle::platform {

void ReadFontList() {}

}  // namespace quendle::platform
