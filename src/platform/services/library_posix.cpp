#include <dlfcn.h>

#include <utility>

#include "platform/services/library.h"

namespace quendle::platform {

Result Library::Load(const std::string& path, std::unique_ptr<Library>* library, Binding binding) {
  void* handle = dlopen(path.c_str(), (binding == Binding::kAtOnce ? RTLD_NOW : RTLD_LAZY) | RTLD_LOCAL);
  if (handle == nullptr) {
    const char* said = dlerror();
    if (said == nullptr) return Failure(Code::kFailed, path, why::kModuleNotLoaded);
    std::string words = said;
    if (const std::string place = path + ": "; words.starts_with(place)) words.erase(0, place.size());
    return Failure(Code::kFailed, path, Reason(std::move(words)));
  }
  library->reset(new Library(handle));
  return Success();
}

Library::~Library() {
  dlclose(handle_);
}

Library::AnyFunction Library::FindSymbol(const std::string& name) const {
  return reinterpret_cast<AnyFunction>(dlsym(handle_, name.c_str()));
}

}  // namespace quendle::platform
