// An environment variable, and the time zone of the C library, for the time of a test.
#pragma once

#include <cstdlib>
#include <ctime>
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

// Those that a process can be told for all of it; on Windows only the system's own.
#ifdef _WIN32
inline constexpr const char* kZones[] = {""};
#else
inline constexpr const char* kZones[] = {"UTC0", "JST-9", "EST5"};
#endif

class TimeZone {
 public:
  explicit TimeZone(const char* zone) : variable_("TZ", zone) { Apply(); }

 private:
  static void Apply() {
#ifdef _WIN32
    _tzset();
#else
    tzset();
#endif
  }

  struct Restore {
    ~Restore() { Apply(); }
  };
  Restore restore_;  // behind the variable's own
  ScopedVariable variable_;
};

}  // namespace quendle::test
