#include "base/display.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>

#include "platform/unicode.h"

namespace quendle {
namespace {

// Line and paragraph separators, and everything that reorders the text around it.
bool IsDeceptive(char32_t c) {
  return (c >= 0x7F && c < 0xA0) || c == 0x061C || c == 0x200E || c == 0x200F ||
         (c >= 0x2028 && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

std::string Escape(char32_t code_point) {
  switch (code_point) {
    case '\n':
      return "\\n";
    case '\r':
      return "\\r";
    case '\t':
      return "\\t";
    default:
      break;
  }
  char text[16];
  std::snprintf(text, sizeof text, "\\u{%X}", static_cast<unsigned>(code_point));
  return text;
}

bool IsPlain(char c) {
  return c >= 0x20 && c < 0x7F && c != '\\';
}

std::string Escaped(std::string_view name, bool characters_too) {
  std::string shown;
  while (true) {
    // Most of a log is plain, and a log may be large.
    const auto plain =
        static_cast<std::size_t>(std::find_if_not(name.begin(), name.end(), IsPlain) - name.begin());
    shown += name.substr(0, plain);
    name.remove_prefix(plain);
    if (name.empty()) return shown;
    char32_t code_point = 0;
    if (!platform::TakeCodePoint(&name, &code_point)) {
      char text[8];
      std::snprintf(text, sizeof text, "\\x%02X", static_cast<unsigned>(code_point));
      shown += text;
    } else if (code_point == '\\') {
      shown += "\\\\";
    } else if (characters_too && (code_point < 0x20 || IsDeceptive(code_point))) {
      shown += Escape(code_point);
    } else {
      platform::AppendCodePoint(code_point, &shown);
    }
  }
}

}  // namespace

std::string ForDisplay(std::string_view name) {
  return Escaped(name, true);
}

std::string WithEscapedBytes(std::string_view name) {
  return Escaped(name, false);
}

}  // namespace quendle
