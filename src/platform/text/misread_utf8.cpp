#include "platform/text/misread_utf8.h"

#include <algorithm>
#include <optional>
#include <string>
#include <unordered_map>

#include "platform/text/code_page.h"
#include "platform/text/unicode.h"

namespace quendle::platform {
namespace {

constexpr struct {
  char32_t first;
  char32_t last;
} kEveryday[] = {
    {0x00A0, 0x017F},  // Latin
    {0x0218, 0x021B},  // what Romanian has beyond
    {0x0300, 0x030C},  // accents
    {0x0384, 0x03CE},  // Greek
    {0x0400, 0x045F},  // Cyrillic
    {0x0490, 0x0491},  // what Ukrainian has beyond
    {0x05D0, 0x05EA},  // Hebrew
    {0x0620, 0x064A},  // Arabic
    {0x0671, 0x06D3},  // what other languages have beyond
    {0x0800, 0x10FFFF},
};

bool IsEveryday(char32_t code_point) {
  return std::any_of(std::begin(kEveryday), std::end(kEveryday), [code_point](const auto& range) {
    return code_point >= range.first && code_point <= range.last;
  });
}

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<signed char>(c) >= 0; });
}

// Windows-31J has some kanji twice, and encoding never gives the pairs that begin with ED or EE. Most Korean in
// UTF-8 begins with ED.
std::unordered_map<std::string, std::string> SecondSpellings() {
  std::unordered_map<std::string, std::string> spellings;
  for (const char first : {'\xED', '\xEE'}) {
    for (int second = 0x40; second <= 0xFC; ++second) {
      const std::string bytes = {first, static_cast<char>(second)};
      spellings.emplace(TextFromAnsi(bytes), bytes);
    }
  }
  return spellings;
}

// Nothing when no character has a second spelling.
std::optional<std::string> AnsiWithSecondSpellings(std::string_view text) {
  static const auto spellings = SecondSpellings();
  std::string bytes;
  std::string others;
  const auto append_others = [&bytes, &others] {
    const std::optional<std::string> encoded = AnsiFromText(others);
    bytes += encoded.value_or("");
    others.clear();
    return encoded.has_value();
  };
  bool has_second = false;
  while (!text.empty()) {
    std::string_view rest = text;
    char32_t ignored = 0;
    TakeCodePoint(&rest, &ignored);
    const std::string character(text.substr(0, text.size() - rest.size()));
    text = rest;
    const auto second = spellings.find(character);
    if (second == spellings.end()) {
      others += character;
    } else {
      has_second = true;
      if (!append_others()) return std::nullopt;
      bytes += second->second;
    }
  }
  if (!has_second || !append_others()) return std::nullopt;
  return bytes;
}

}  // namespace

bool LooksLikeUtf8(std::string_view bytes) {
  bool has_everyday = false;
  while (!bytes.empty()) {
    char32_t code_point = 0;
    if (!TakeCodePoint(&bytes, &code_point)) return false;
    has_everyday |= IsEveryday(code_point);
  }
  return has_everyday;
}

bool LooksLikeMisreadUtf8(std::string_view text) {
  if (IsAscii(text)) return false;
  const std::optional<std::string> ansi = AnsiFromText(text);
  if (ansi && LooksLikeUtf8(*ansi)) return true;
  const std::optional<std::string> second = AnsiWithSecondSpellings(text);
  return second && LooksLikeUtf8(*second);
}

}  // namespace quendle::platform
