// Libraries that convert names through the C library's locale.
#pragma once

namespace quendle::platform {

// While it lives, the calling thread's character set is UTF-8, whatever the user's locale is. Nothing else of
// the locale changes, and other threads do not notice. Cheap. On Windows
// nothing changes: names are UTF-16 there, and libraries have functions for those.
class Utf8Locale {
 public:
  Utf8Locale();
  ~Utf8Locale();
  Utf8Locale(const Utf8Locale&) = delete;
  Utf8Locale& operator=(const Utf8Locale&) = delete;

 private:
  void* former_;
};

}  // namespace quendle::platform
