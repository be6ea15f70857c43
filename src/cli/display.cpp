#include "cli/display.h"

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

std::string EscapeNames(std::string_view name, bool characters_too, bool* escaped) {
  std::string plain;
  std::string shown;  // with doubled backslashes
  bool any = false;
  while (!name.empty()) {
    char32_t code_point = 0;
    const bool valid = platform::TakeCodePoint(&name, &code_point);
    std::string piece;
    if (!valid) {
      char text[8];
      std::snprintf(text, sizeof text, "\\x%02X", static_cast<unsigned>(code_point));
      piece = text;
    } else if (characters_too && (code_point < 0x20 || IsDeceptive(code_point))) {
      piece = Escape(code_point);
    }
    any |= !piece.empty();
    if (piece.empty()) platform::AppendCodePoint(code_point, &piece);
    plain += piece;
    shown += piece == "\\" ? "\\\\" : piece;
  }
  if (escaped != nullptr) *escaped |= any;
  return any ? shown : plain;
}

}  // namespace

std::string ForDisplay(std::string_view name, bool* escaped) {
  return EscapeNames(name, true, escaped);
}

std::string WithEscapedBytes(std::string_view name, bool* escaped) {
  return EscapeNames(name, false, escaped);
}

}  // namespace quendle
