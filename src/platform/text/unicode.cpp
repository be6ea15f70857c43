#include "platform/text/unicode.h"

#include <utf8proc.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace quendle::platform {
namespace {

const utf8proc_uint8_t* Bytes(std::string_view text) {
  return reinterpret_cast<const utf8proc_uint8_t*>(text.data());
}

bool IsSurrogate(char32_t unit, char32_t first) {
  return unit >= first && unit < first + 0x400;
}

char32_t UpperCaseOf(char32_t code_point) {
  if (code_point == U'ß') return code_point;  // has no simple mapping; utf8proc gives the capital sharp s
  return static_cast<char32_t>(utf8proc_toupper(static_cast<utf8proc_int32_t>(code_point)));
}

void AppendUnit(char32_t unit, std::string* bytes) {
  bytes->push_back(static_cast<char>(unit & 0xFF));
  bytes->push_back(static_cast<char>(unit >> 8));
}

}  // namespace

bool TakeCodePoint(std::string_view* text, char32_t* code_point) {
  if (const auto first = static_cast<unsigned char>(text->front()); first < 0x80) {  // nearly all text
    *code_point = first;
    text->remove_prefix(1);
    return true;
  }
  utf8proc_int32_t value = 0;
  const utf8proc_ssize_t length =
      utf8proc_iterate(Bytes(*text), static_cast<utf8proc_ssize_t>(text->size()), &value);
  if (length <= 0) {
    *code_point = static_cast<unsigned char>(text->front());
    text->remove_prefix(1);
    return false;
  }
  *code_point = static_cast<char32_t>(value);
  text->remove_prefix(static_cast<std::size_t>(length));
  return true;
}

void AppendCodePoint(char32_t code_point, std::string* text) {
  if (code_point < 0x80) {
    text->push_back(static_cast<char>(code_point));
    return;
  }
  utf8proc_uint8_t bytes[4];
  const utf8proc_ssize_t length = utf8proc_encode_char(static_cast<utf8proc_int32_t>(code_point), bytes);
  text->append(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length));
}

bool IsUtf8(std::string_view bytes) {
  char32_t ignored = 0;
  const auto is_ascii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
  for (;;) {
    // Nearly all text.
    bytes.remove_prefix(
        static_cast<std::size_t>(std::find_if_not(bytes.begin(), bytes.end(), is_ascii) - bytes.begin()));
    if (bytes.empty()) return true;
    if (!TakeCodePoint(&bytes, &ignored)) return false;
  }
}

std::string WithReplacementCharacters(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  char32_t code_point = 0;
  while (!bytes.empty()) {
    AppendCodePoint(TakeCodePoint(&bytes, &code_point) ? code_point : kReplacementCharacter, &text);
  }
  return text;
}

std::string UpperCase(std::string_view text) {
  std::string upper;
  upper.reserve(text.size());
  while (!text.empty()) {
    const char first = text.front();
    if (static_cast<unsigned char>(first) < 0x80) {  // nearly all text: not worth a look-up
      upper.push_back(first >= 'a' && first <= 'z' ? static_cast<char>(first - 'a' + 'A') : first);
      text.remove_prefix(1);
      continue;
    }
    char32_t code_point = 0;
    if (TakeCodePoint(&text, &code_point)) {
      AppendCodePoint(UpperCaseOf(code_point), &upper);
    } else {
      upper.push_back(first);
    }
  }
  return upper;
}

std::string FoldedName(std::string_view name) {
  const auto is_ascii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
  if (std::all_of(name.begin(), name.end(), is_ascii)) return UpperCase(name);
  utf8proc_uint8_t* folded = nullptr;
  const utf8proc_ssize_t size =
      utf8proc_map(Bytes(name), static_cast<utf8proc_ssize_t>(name.size()), &folded,
                   static_cast<utf8proc_option_t>(UTF8PROC_COMPOSE | UTF8PROC_CASEFOLD));
  if (size < 0) return UpperCase(name);
  const std::unique_ptr<utf8proc_uint8_t, decltype(&std::free)> owner(folded, &std::free);
  return UpperCase({reinterpret_cast<const char*>(folded), static_cast<std::size_t>(size)});
}

std::string_view EndOfColumns(std::string_view text, int columns) {
  int all = 0;
  char32_t code_point = 0;
  for (std::string_view rest = text; !rest.empty();) {
    TakeCodePoint(&rest, &code_point);
    all += utf8proc_charwidth(static_cast<utf8proc_int32_t>(code_point));
  }
  while (all > columns) {
    TakeCodePoint(&text, &code_point);
    all -= utf8proc_charwidth(static_cast<utf8proc_int32_t>(code_point));
  }
  return text;
}

std::string FromUtf16Le(std::string_view bytes) {
  const auto unit_at = [bytes](std::size_t i) {
    return static_cast<char32_t>(static_cast<unsigned char>(bytes[i])) |
           static_cast<char32_t>(static_cast<unsigned char>(bytes[i + 1])) << 8;
  };
  std::string text;
  text.reserve(bytes.size());
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    char32_t unit = unit_at(i);
    if (IsSurrogate(unit, 0xD800) && i + 3 < bytes.size() && IsSurrogate(unit_at(i + 2), 0xDC00)) {
      unit = 0x10000 + ((unit - 0xD800) << 10) + (unit_at(i + 2) - 0xDC00);
      i += 2;
    } else if (IsSurrogate(unit, 0xD800) || IsSurrogate(unit, 0xDC00)) {
      unit = kReplacementCharacter;
    }
    AppendCodePoint(unit, &text);
  }
  return text;
}

std::string ToUtf16Le(std::string_view text) {
  std::string bytes;
  bytes.reserve(text.size() * 2);
  while (!text.empty()) {
    char32_t code_point = 0;
    if (!TakeCodePoint(&text, &code_point)) code_point = kReplacementCharacter;
    if (code_point >= 0x10000) {
      AppendUnit(0xD800 + ((code_point - 0x10000) >> 10), &bytes);
      AppendUnit(0xDC00 + ((code_point - 0x10000) & 0x3FF), &bytes);
    } else {
      AppendUnit(code_point, &bytes);
    }
  }
  return bytes;
}

std::string WithoutMark(std::string text) {
  if (text.starts_with(kMark)) text.erase(0, kMark.size());
  return text;
}

bool IsTakenForUtf16(std::string_view bytes) {
  return bytes.starts_with('\xFF') || bytes.starts_with('\xFE');
}

}  // namespace quendle::platform
