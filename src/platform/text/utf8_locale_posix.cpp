#include <locale.h>

#include "platform/text/utf8_locale.h"

namespace quendle::platform {
namespace {

// Made once and never freed: making it reads files.
locale_t LocaleWithUtf8() {
  static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", duplocale(LC_GLOBAL_LOCALE));
  return locale;
}

}  // namespace

Utf8Locale::Utf8Locale() : former_(LocaleWithUtf8() == nullptr ? nullptr : uselocale(LocaleWithUtf8())) {}

Utf8Locale::~Utf8Locale() {
  if (former_ != nullptr) uselocale(static_cast<locale_t>(former_));
}

}  // namespace quendle::platform
