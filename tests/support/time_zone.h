// The time zone of the C library for the time of a test.
#pragma once

#include <ctime>

#include "support/scoped_variable.h"

namespace quendle::test {

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
