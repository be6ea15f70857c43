#include <dlfcn.h>

#include "platform/services/fonts.h"

namespace quendle::platform {

// By the name in fontconfig's interface, whose first version is what every toolkit uses; it stays loaded for them.
void ReadFontList() {
  void* library = dlopen("libfontconfig.so.1", RTLD_LAZY | RTLD_LOCAL);
  if (library == nullptr) return;
  const auto initialise = reinterpret_cast<int (*)()>(dlsym(library, "FcInit"));
  if (initialise != nullptr) initialise();
}

}  // namespace quendle::platform
