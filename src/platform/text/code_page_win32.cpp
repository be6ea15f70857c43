#include "platform/text/code_page_win32.h"

#include <algorithm>

#include "platform/text/code_page.h"
#include "platform/text/unicode.h"

namespace quendle::platform {
namespace {

constexpr UINT kShiftJis = 932;

bool IsInRange(char32_t unit, char32_t first, char32_t last) {
  return unit >= first && unit <= last;
}

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// Bytes that belong to no character are, in some tables, the control character of their number or one of a private
// area, which would hide that they are none.
bool IsMadeUp(UINT code_page, wchar_t unit) {
  const bool is_iso = code_page > 28590 && code_page <= 28606;  // where these controls are characters
  return (IsInRange(unit, 0x80, 0x9F) && !is_iso) || IsInRange(unit, 0xF880, 0xF8FF) ||
         (unit == 0xA0 && code_page == kShiftJis);
}

std::optional<std::wstring> DecodeAll(UINT code_page, std::string_view bytes) {
  if (bytes.empty()) return L"";
  const int size = static_cast<int>(bytes.size());
  std::wstring wide(bytes.size(), L'\0');  // no byte becomes more than one unit
  const int length =
      MultiByteToWideChar(code_page, MB_ERR_INVALID_CHARS, bytes.data(), size, wide.data(), size);
  if (length <= 0) return std::nullopt;
  wide.resize(static_cast<std::size_t>(length));
  return wide;
}

// Does the unit need a look at the bytes it comes from?
bool IsDoubtful(UINT code_page, wchar_t unit) {
  return IsMadeUp(code_page, unit) || IsUndecodableByte(unit);
}

bool HasDoubtful(UINT code_page, const std::wstring& wide) {
  return std::any_of(wide.begin(), wide.end(), [&](wchar_t unit) { return IsDoubtful(code_page, unit); });
}

bool Encode(UINT code_page, std::string_view text, std::string* bytes) {
  if (text.empty()) return true;
  const std::wstring wide = WideFromText(text);
  const bool is_utf8 = code_page == CP_UTF8;  // which takes neither the flag nor the question
  const DWORD flags = is_utf8 ? 0 : WC_NO_BEST_FIT_CHARS;
  BOOL is_replaced = FALSE;
  std::string room(wide.size() * 3, '\0');
  const int length =
      WideCharToMultiByte(code_page, flags, wide.data(), static_cast<int>(wide.size()), room.data(),
                          static_cast<int>(room.size()), nullptr, is_utf8 ? nullptr : &is_replaced);
  if (length <= 0 || is_replaced != FALSE) return false;
  bytes->append(room, 0, static_cast<std::size_t>(length));
  return true;
}

// The beginning of `text` up to the first character that stands for a byte. Nothing when it is not valid.
std::optional<std::string_view> UpToUndecodable(std::string_view text) {
  std::string_view rest = text;
  while (!rest.empty()) {
    const std::size_t position = text.size() - rest.size();
    char32_t code_point = 0;
    if (!TakeCodePoint(&rest, &code_point)) return std::nullopt;
    if (IsUndecodableByte(code_point)) return text.substr(0, position);
  }
  return text;
}

}  // namespace

bool IsKnownCodePage(UINT code_page) {
  return DecodeAll(code_page, "a").has_value();
}

std::size_t DecodeCharacter(UINT code_page, std::string_view bytes, std::wstring* wide) {
  std::size_t length = IsDBCSLeadByteEx(code_page, static_cast<BYTE>(bytes.front())) != 0 ? 2 : 1;
  if (code_page == CP_UTF8) {
    std::string_view rest = bytes;
    char32_t ignored = 0;
    TakeCodePoint(&rest, &ignored);
    length = bytes.size() - rest.size();
  }
  if (bytes.size() < length) return 0;
  const auto decoded = DecodeAll(code_page, bytes.substr(0, length));
  const bool is_high = static_cast<unsigned char>(bytes.front()) >= 0x80;
  if (!decoded || (length == 1 && is_high && IsMadeUp(code_page, decoded->front()))) return 0;
  *wide += *decoded;
  return length;
}

std::optional<std::wstring> DecodeStrictly(UINT code_page, std::string_view bytes) {
  auto all = DecodeAll(code_page, bytes);
  if (!all || !HasDoubtful(code_page, *all)) return all;
  std::wstring wide;
  while (!bytes.empty()) {
    const std::size_t length = DecodeCharacter(code_page, bytes, &wide);
    if (length == 0) return std::nullopt;
    bytes.remove_prefix(length);
  }
  return wide;
}

std::string TextFromAnsi(std::string_view bytes) {
  if (IsAscii(bytes)) return std::string(bytes);
  const UINT code_page = GetACP();
  if (const auto all = DecodeAll(code_page, bytes); all && !HasDoubtful(code_page, *all))
    return TextFromWide(*all);
  std::wstring wide;
  while (!bytes.empty()) {
    const std::size_t before = wide.size();
    std::size_t length = DecodeCharacter(code_page, bytes, &wide);
    // A character of the area that stands for bytes would come back as another one's byte.
    if (length == 0 || IsUndecodableByte(wide[before])) {
      const auto byte = static_cast<unsigned char>(bytes.front());
      wide.resize(before);
      wide += static_cast<wchar_t>(byte < 0x80 ? byte : kFirstUndecodableByte + (byte - 0x80U));
      length = 1;
    }
    bytes.remove_prefix(length);
  }
  return TextFromWide(wide);
}

std::optional<std::string> AnsiFromText(std::string_view text) {
  if (IsAscii(text)) return std::string(text);
  std::string bytes;
  for (std::string_view rest = text; !rest.empty();) {
    const auto run = UpToUndecodable(rest);
    if (!run || !Encode(GetACP(), *run, &bytes)) return std::nullopt;
    rest.remove_prefix(run->size());
    if (rest.empty()) break;
    char32_t code_point = 0;
    TakeCodePoint(&rest, &code_point);
    bytes.push_back(static_cast<char>(code_point - kFirstUndecodableByte + 0x80));
  }
  // Bytes that stand for themselves can form a character with what follows them, and some characters encode to bytes
  // that decode to others.
  if (TextFromAnsi(bytes) != text) return std::nullopt;
  return bytes;
}

std::size_t AnsiWidth(char32_t code_point) {
  if (code_point < 0x80 || IsUndecodableByte(code_point)) return 1;
  std::string character;
  AppendCodePoint(code_point, &character);
  std::string bytes;
  return Encode(GetACP(), character, &bytes) ? bytes.size() : 2;
}

Result CheckDecoded(std::string_view) {
  return Success();  // the system has the tables of its own code page
}

}  // namespace quendle::platform
