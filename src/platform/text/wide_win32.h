// What all Windows back ends share: the system's header, UTF-16 names and handles.
#pragma once

#include <windows.h>
#undef ReplaceFile  // a macro for the system's function, which would rename ours

#include <string>
#include <string_view>
#include <utility>

#include "reasons/result.h"

namespace quendle::platform {

// Names on Windows are 16-bit units that only usually are valid UTF-16. A surrogate without its other half is its three
// bytes in the inner text, so that every name comes back the same.
std::wstring WideFromText(std::string_view text);
std::string TextFromWide(std::wstring_view wide);

// The path as system calls take it, whatever its length and whatever its last letters: absolute, with the prefix that
// turns the system's own rewriting off, so that "con", "a." and "a " are names like any other.
//   "C:\a/b" => "\\?\C:\a\b"    "\\server\share\a" => "\\?\UNC\server\share\a"    "C:\a\..\b" => "\\?\C:\b"
// What is relative, or relative to a drive ("C:a", "\a"), counts from where the process is. A path that has the prefix
// keeps it, also when it is written with "/", and no path is none.
std::wstring SystemPath(std::string_view path);

// And back; a volume that has no name without the prefix keeps it.
std::string TextFromSystemPath(std::wstring_view path);
std::wstring WithoutPrefix(std::wstring_view path);

// The path as other programs and the shell take it: absolute, without the prefix. Refused when it is too long for them,
// or when they would rewrite it ("C:\a." means "C:\a" to them).
Result ToShellPath(const std::string& path, std::wstring* shell_path);

// What a call writes that returns the length, or the size it needs when the buffer is too small.
template <typename Call>
std::wstring WholeText(Call call) {
  std::wstring text(MAX_PATH, L'\0');
  while (true) {
    const DWORD length = call(text.data(), static_cast<DWORD>(text.size()));
    const bool fits = length < text.size();
    text.resize(fits ? length : length + std::size_t{1});
    if (fits) return text;
  }
}

class Handle {
 public:
  explicit Handle(HANDLE handle = INVALID_HANDLE_VALUE) : handle_(handle) {}
  Handle(Handle&& other) noexcept : handle_(std::exchange(other.handle_, INVALID_HANDLE_VALUE)) {}
  Handle& operator=(Handle&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~Handle() { Close(); }

  bool ok() const { return handle_ != INVALID_HANDLE_VALUE && handle_ != nullptr; }
  HANDLE get() const { return handle_; }
  HANDLE Release() { return std::exchange(handle_, INVALID_HANDLE_VALUE); }
  void Close() {
    if (ok()) CloseHandle(handle_);
    handle_ = INVALID_HANDLE_VALUE;
  }

 private:
  HANDLE handle_;
};

}  // namespace quendle::platform
