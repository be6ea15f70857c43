#include "platform/code_page.h"

#include "platform/unicode.h"

namespace quendle::platform {
namespace {

bool IsInRange(char32_t code_point, char32_t first, char32_t last) {
  return code_point >= first && code_point <= last;
}

std::size_t AnsiWidth(char32_t code_point) {
  const bool half_width_katakana = IsInRange(code_point, 0xFF61, 0xFF9F);
  return code_point < 0x80 || half_width_katakana || IsUndecodableByte(code_point) ? 1 : 2;
}

}  // namespace

bool IsUndecodableByte(char32_t code_point) {
  return IsInRange(code_point, kFirstUndecodableByte, kFirstUndecodableByte + 0x7F);
}

std::string_view CutToAnsiBytes(std::string_view text, std::size_t limit) {
  if (text.size() <= limit / 2) return text;  // no byte of UTF-8 takes more than two
  std::string_view rest = text;
  std::size_t kept = 0;
  while (!rest.empty()) {
    char32_t code_point = 0;
    const std::size_t width = TakeCodePoint(&rest, &code_point) ? AnsiWidth(code_point) : 2;
    if (width > limit) break;
    limit -= width;
    kept = text.size() - rest.size();
  }
  return text.substr(0, kept);
}

}  // namespace quendle::platform
