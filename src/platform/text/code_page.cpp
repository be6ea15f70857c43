#include "platform/text/code_page.h"

#include "platform/text/unicode.h"

namespace quendle::platform {

bool IsUndecodableByte(char32_t code_point) {
  return code_point >= kFirstUndecodableByte && code_point <= kFirstUndecodableByte + 0x7F;
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
