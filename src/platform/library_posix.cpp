#include <dlfcn.h>

#include "platform/library.h"

namespace quendle::platform {

Result Library::Load(const std::string& path, std::unique_ptr<Library>* library) {
  // All symbols now: one that is missing is better known before it is called.
  void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) {
    const char* reason = dlerror();
    return Failure(Code::kFailed, path, reason == nullptr ? "the module cannot be loaded" : reason);
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
