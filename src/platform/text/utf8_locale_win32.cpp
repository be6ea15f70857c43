#include "platform/text/utf8_locale.h"

namespace quendle::platform {

// The C runtime has no such locale; libraries have functions of their own for names in UTF-8 or UTF-16.
Utf8Locale::Utf8Locale() : former_(nullptr) {}
Utf8Locale::~Utf8Locale() = default;

}  // namespace quendle::platform
