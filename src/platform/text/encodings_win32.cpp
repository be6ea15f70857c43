#include <algorithm>
#include <charconv>

#include "platform/text/code_page.h"
#include "platform/text/code_page_win32.h"
#include "platform/text/unicode.h"

namespace quendle::platform {
namespace {

// The two encodings for which the system has no strict decoder.
constexpr UINT kEucJp = 51932;
constexpr UINT kIso2022Jp = 50220;

// JIS X 0208 by pairs with both high bits set, and JIS X 0212 by pairs with the first one set.
constexpr UINT kJisPairs = 20932;

constexpr struct {
  std::string_view name;
  UINT code_page;
} kNames[] = {
    {"WINDOWS-31J", 932}, {"SHIFT_JIS", 932}, {"SHIFT-JIS", 932},
    {"SJIS", 932},        {"MS_KANJI", 932},  {"MS932", 932},
    {"932", 932},         {"EUC-JP", kEucJp}, {"ISO-2022-JP", kIso2022Jp},
    {"UTF-8", CP_UTF8},   {"UTF8", CP_UTF8},  {"GBK", 936},
    {"GB2312", 936},      {"BIG5", 950},      {"EUC-KR", 949},
    {"KOI8-R", 20866},    {"KOI8-U", 21866},
};

constexpr struct {
  std::string_view prefix;
  UINT first;
} kNumbered[] = {{"WINDOWS-", 0}, {"CP", 0}, {"IBM", 0}, {"ISO-8859-", 28590}, {"ISO8859-", 28590}};

// 0 for a name that is not known.
UINT CodePageOf(const std::string& encoding) {
  const std::string name = UpperCase(encoding);
  for (const auto& row : kNames) {
    if (name == row.name) return row.code_page;
  }
  for (const auto& row : kNumbered) {
    if (!name.starts_with(row.prefix)) continue;
    UINT number = 0;
    const char* end = name.data() + name.size();
    const auto [stop, error] = std::from_chars(name.data() + row.prefix.size(), end, number);
    if (error != std::errc() || stop != end || number == 0) return 0;
    return IsKnownCodePage(row.first + number) ? row.first + number : 0;
  }
  return 0;
}

bool IsJisByte(char byte, bool is_high) {
  const auto value = static_cast<unsigned char>(byte);
  return is_high ? value >= 0xA1 && value <= 0xFE : value >= 0x21 && value <= 0x7E;
}

bool AppendJis(char first, char second, std::wstring* wide) {
  const char pair[] = {first, second};
  return DecodeCharacter(kJisPairs, {pair, 2}, wide) == 2;
}

char WithHighBit(char byte) {
  return static_cast<char>(byte | 0x80);
}

// The length of the character that `bytes` begin with; 0 when they begin with none.
std::size_t DecodeEucJp(std::string_view bytes, std::wstring* wide) {
  constexpr char kHalfWidth = '\x8E';
  constexpr char kSupplement = '\x8F';
  const char first = bytes.front();
  if (static_cast<unsigned char>(first) < 0x80) {
    *wide += static_cast<wchar_t>(first);
    return 1;
  }
  const std::size_t length = first == kSupplement ? 3 : 2;
  if (bytes.size() < length) return 0;
  const char second = bytes[1];
  if (!IsJisByte(second, true)) return 0;
  if (first == kHalfWidth) {
    const auto number = static_cast<unsigned char>(second);
    if (number > 0xDF) return 0;
    *wide += static_cast<wchar_t>(0xFF61 + (number - 0xA1));
    return length;
  }
  if (first == kSupplement) {
    if (!IsJisByte(bytes[2], true)) return 0;
    return AppendJis(second, static_cast<char>(bytes[2] & 0x7F), wide) ? length : 0;
  }
  return IsJisByte(first, true) && AppendJis(first, second, wide) ? length : 0;
}

// Which characters bytes mean is said by escape sequences. Each text begins in ASCII.
class Iso2022JpDecoder {
 public:
  std::size_t operator()(std::string_view bytes, std::wstring* wide) {
    const char first = bytes.front();
    if (first == '\x1B') return Shift(bytes);
    if (static_cast<unsigned char>(first) >= 0x80) return 0;
    if (!is_kanji_ || static_cast<unsigned char>(first) <= 0x20) {
      *wide += Single(first);
      return 1;
    }
    if (bytes.size() < 2 || !IsJisByte(first, false) || !IsJisByte(bytes[1], false)) return 0;
    return AppendJis(WithHighBit(first), WithHighBit(bytes[1]), wide) ? 2 : 0;
  }

 private:
  std::size_t Shift(std::string_view bytes) {
    const std::string_view sequence = bytes.substr(1, 2);
    is_kanji_ = sequence == "$@" || sequence == "$B";
    is_roman_ = sequence == "(J";
    return is_kanji_ || is_roman_ || sequence == "(B" ? 3 : 0;
  }

  // The Roman set of JIS differs from ASCII in two places.
  wchar_t Single(char byte) const {
    if (is_roman_ && byte == '\\') return L'\u00A5';
    if (is_roman_ && byte == '~') return L'\u203E';
    return static_cast<wchar_t>(byte);
  }

  bool is_kanji_ = false;
  bool is_roman_ = false;
};

template <typename Decoder>
std::optional<std::wstring> DecodeBy(Decoder decode, std::string_view bytes) {
  std::wstring wide;
  while (!bytes.empty()) {
    const std::size_t length = decode(bytes, &wide);
    if (length == 0) return std::nullopt;
    bytes.remove_prefix(length);
  }
  return wide;
}

std::optional<std::wstring> Decode(UINT code_page, std::string_view bytes) {
  if (code_page == kEucJp) return DecodeBy(&DecodeEucJp, bytes);
  if (code_page == kIso2022Jp) return DecodeBy(Iso2022JpDecoder(), bytes);
  return DecodeStrictly(code_page, bytes);
}

}  // namespace

std::optional<std::string> TextFromEncoding(std::string_view bytes, const std::string& encoding) {
  const UINT code_page = CodePageOf(encoding);
  const auto wide = code_page == 0 ? std::nullopt : Decode(code_page, bytes);
  if (!wide) return std::nullopt;
  return TextFromWide(*wide);
}

}  // namespace quendle::platform
