// An environment variable for the time of a test.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

namespace quendle::test {

class ScopedVariable {
 public:
  ScopedVariable(const char* name, const std::string& value) : name_(name) {
    if (const char* old = std::getenv(name)) old_ = old;
    Set(value);
  }
  ~ScopedVariable() {
    if (old_) {
      Set(*old_);
    } else {
      Remove();
    }
  }
  ScopedVariable(const ScopedVariable&) = delete;
  ScopedVariable& operator=(const ScopedVariable&) = delete;

 private:
#ifdef _WIN32
  void Set(const std::string& value) {
    _putenv_s(name_, value.c_str());
  }  // in the code page
  void Remove() {
    _putenv_s(name_, "");
  }
#else
  void Set(const std::string& value) {
    setenv(name_, value.c_str(), 1);
  }
  void Remove() {
    unsetenv(name_);
  }
#endif

  const char* name_;
  std::optional<std::string> old_;
};

}  // namespace quendle::test
