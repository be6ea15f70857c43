#include "base/display.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "platform/text/unicode.h"

namespace quendle {
namespace {

// What stands around the numbers of characters on Windows, where names have no backslash to be doubled.
constexpr std::string_view kOpen = "‹";
constexpr std::string_view kClose = "›";
constexpr char32_t kOpenCharacter = 0x2039;

std::string Number(const char* format, char32_t value) {
  char text[16];
  std::snprintf(text, sizeof text, format, static_cast<unsigned>(value));
  return text;
}

std::string EscapeByte(char32_t byte, PathStyle style) {
  return Number(style == PathStyle::kWindows ? "‹x%02X›" : "\\x%02X", byte);
}

std::string Escape(char32_t code_point, PathStyle style) {
  if (style == PathStyle::kWindows) return Number("‹%X›", code_point);
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
  return Number("\\u{%X}", code_point);
}

bool IsPlain(char c) {
  return c >= 0x20 && c < 0x7F && c != '\\';
}

std::string Escaped(std::string_view name, bool characters_too, PathStyle style) {
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
      shown += EscapeByte(code_point, style);
    } else if (code_point == '\\') {
      shown += style == PathStyle::kWindows ? "\\" : "\\\\";
    } else if (characters_too && (code_point < 0x20 || IsDeceptive(code_point) ||
                                  (style == PathStyle::kWindows && code_point == kOpenCharacter))) {
      shown += Escape(code_point, style);
    } else {
      platform::AppendCodePoint(code_point, &shown);
    }
  }
}

std::string UnescapedPosix(std::string_view shown, std::size_t* length) {
  constexpr std::string_view kShort = "\\nrt";
  constexpr std::string_view kMeaning = "\\\n\r\t";
  const char kind = shown.size() < 2 ? '\0' : shown[1];
  std::string meant;
  *length = 2;
  if (const std::size_t at = kShort.find(kind); at != std::string_view::npos) {
    meant = kMeaning[at];
  } else if (kind == 'x' || shown.substr(1, 2) == "u{") {
    const bool is_byte = kind == 'x';
    std::uint32_t value = 0;
    const char* const digits = shown.data() + (is_byte ? 2 : 3);
    const char* const end = shown.data() + (is_byte ? std::min<std::size_t>(shown.size(), 4) : shown.size());
    const char* const behind = std::from_chars(std::min(digits, end), end, value, 16).ptr;
    *length = static_cast<std::size_t>(behind - shown.data()) + (is_byte ? 0 : 1);
    if (is_byte && value <= 0xFF) meant = static_cast<char>(value);
    if (!is_byte && value <= 0x10FFFF) platform::AppendCodePoint(value, &meant);
  }
  return meant;
}

std::string UnescapedWindows(std::string_view shown, std::size_t* length) {
  const std::size_t end = shown.find(kClose);
  if (end == std::string_view::npos) return "";
  *length = end + kClose.size();
  const bool is_byte = shown.substr(kOpen.size(), 1) == "x";
  std::uint32_t value = 0;
  const char* const digits = shown.data() + kOpen.size() + (is_byte ? 1 : 0);
  if (std::from_chars(digits, shown.data() + end, value, 16).ptr != shown.data() + end) return "";
  std::string meant;
  if (is_byte && value <= 0xFF) meant = static_cast<char>(value);
  if (!is_byte && value <= 0x10FFFF) platform::AppendCodePoint(value, &meant);
  return meant;
}

// The character or byte that the escape at the front of `shown` stands for, and the escape's length; empty when
// none does that ForDisplay would have written so.
std::string Unescaped(std::string_view shown, PathStyle style, std::size_t* length) {
  const bool is_windows = style == PathStyle::kWindows;
  if (!shown.starts_with(is_windows ? kOpen : "\\")) return "";
  const std::string meant = is_windows ? UnescapedWindows(shown, length) : UnescapedPosix(shown, length);
  // No name has the character zero in it.
  const bool is_written_so =
      meant != std::string(1, '\0') && ForDisplay(meant, style) == shown.substr(0, *length);
  return is_written_so ? meant : "";
}

}  // namespace

bool IsDeceptive(char32_t character) {
  return (character >= 0x7F && character < 0xA0) || character == 0x061C || character == 0x200E ||
         character == 0x200F || (character >= 0x2028 && character <= 0x202E) ||
         (character >= 0x2066 && character <= 0x2069);
}

Reason ForDisplay(const Reason& reason) {
  return reason.WithWords([](const std::string& words) { return ForDisplay(words); });
}

std::string FromDisplay(std::string_view shown, PathStyle style) {
  std::string name;
  while (!shown.empty()) {
    std::size_t length = 1;
    std::string meant = Unescaped(shown, style, &length);
    if (meant.empty()) {
      length = 1;
      meant = shown.front();
    }
    name += meant;
    shown.remove_prefix(length);
  }
  return name;
}

std::string ForDisplay(std::string_view name, PathStyle style) {
  return Escaped(name, true, style);
}

std::string WithEscapedBytes(std::string_view name) {
  return Escaped(name, false, PathStyle::kPosix);
}

}  // namespace quendle
