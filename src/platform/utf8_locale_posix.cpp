#include <locale.h>

#include "platform/utf8_locale.h"

namespace quendle::platform {

Utf8Locale::Utf8Locale()
    : own_(newlocale(LC_CTYPE_MASK, "C.UTF-8", duplocale(uselocale(nullptr)))), former_(nullptr) {
  if (own_ != nullptr) former_ = uselocale(static_cast<locale_t>(own_));
}

Utf8Locale::~Utf8Locale() {
  if (own_ == nullptr) return;
  uselocale(static_cast<locale_t>(former_));
  freelocale(static_cast<locale_t>(own_));
}

}  // namespace quendle::platform
