// Loadable modules.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "reasons/result.h"

namespace quendle::platform {

// What the names of modules end with: ".so" on POSIX.
#ifdef _WIN32
inline constexpr std::string_view kLibrarySuffix = ".dll";
#else
inline constexpr std::string_view kLibrarySuffix = ".so";
#endif

class Library {
 public:
  // kAtOnce: a function that is missing is a failure to load. kWhenCalled: it ends the process when it is called, but
  // large libraries load faster.
  enum class Binding { kAtOnce, kWhenCalled };

  // Loads the module at that absolute path, nothing else under its name. A failure says what is missing.
  static Result Load(const std::string& path, std::unique_ptr<Library>* library,
                     Binding binding = Binding::kAtOnce);

  // Unloads it: nothing of it may be used any more.
  ~Library();
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  // The exported function of that name, or null. The caller knows its type.
  template <typename Function>
  Function Find(const std::string& name) const {
    return reinterpret_cast<Function>(FindSymbol(name));
  }

 private:
  using AnyFunction = void (*)();
  explicit Library(void* handle) : handle_(handle) {}
  AnyFunction FindSymbol(const std::string& name) const;

  void* handle_;
};

}  // namespace quendle::platform
