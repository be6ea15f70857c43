// An environment variable for the time of a test.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace quendle::test {

class ScopedVariable {
 public:
  ScopedVariable(const char* name, const std::string& value) : name_(name) {
    if (const char* old = std::getenv(name)) old_ = old;
    Set(value.c_str());
  }
  ~ScopedVariable() { Set(old_ ? old_->c_str() : nullptr); }
  ScopedVariable(const ScopedVariable&) = delete;
  ScopedVariable& operator=(const ScopedVariable&) = delete;

 private:
  // Without a value it is removed.
  void Set(const char* value) {
#ifdef _WIN32
    _putenv_s(name_, value == nullptr ? "" : value);  // in the code page
#else
    value == nullptr ? unsetenv(name_) : setenv(name_, value, 1);
#endif
  }

  const char* name_;
  std::optional<std::string> old_;
};

}  // namespace quendle::test
