#include "platform/wide_win32.h"

#include <vector>

#include "platform/unicode.h"

namespace quendle::platform {
namespace {

constexpr std::wstring_view kPrefix = L"\\\\?\\";
constexpr std::wstring_view kNetworkPrefix = L"\\\\?\\UNC\\";
constexpr std::wstring_view kDevicePrefix = L"\\\\.\\";

bool IsHighSurrogate(char32_t unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}
bool IsLowSurrogate(char32_t unit) {
  return unit >= 0xDC00 && unit < 0xE000;
}

// The three bytes of a surrogate, which are no valid UTF-8.
bool TakeSurrogate(std::string_view* text, char32_t* unit) {
  if (text->size() < 3) return false;
  const auto byte = [text](std::size_t i) { return static_cast<unsigned char>((*text)[i]); };
  if (byte(0) != 0xED || byte(1) < 0xA0 || byte(1) > 0xBF || byte(2) < 0x80 || byte(2) > 0xBF) return false;
  *unit = 0xD000U | (byte(1) & 0x3FU) << 6 | (byte(2) & 0x3FU);
  text->remove_prefix(3);
  return true;
}

void AppendUnits(char32_t code_point, std::wstring* wide) {
  if (code_point < 0x10000) {
    *wide += static_cast<wchar_t>(code_point);
    return;
  }
  *wide += static_cast<wchar_t>(0xD800 + ((code_point - 0x10000) >> 10));
  *wide += static_cast<wchar_t>(0xDC00 + ((code_point - 0x10000) & 0x3FF));
}

bool IsSeparator(wchar_t unit) {
  return unit == L'\\' || unit == L'/';
}

// "C:\" or "\\server\share": where ".." ends.
std::size_t RootLength(const std::wstring& path) {
  if (path.size() >= 3 && path[1] == L':' && IsSeparator(path[2])) return 3;
  if (path.size() < 3 || !IsSeparator(path[0]) || !IsSeparator(path[1])) return 0;
  std::size_t end = path.find_first_of(L"\\/", 2);
  if (end == std::wstring::npos) return path.size();
  end = path.find_first_of(L"\\/", end + 1);
  return end == std::wstring::npos ? path.size() : end + 1;
}

// Without "." and "..", which the system does not resolve behind the prefix.
std::wstring Resolved(const std::wstring& path, std::size_t root) {
  std::vector<std::wstring_view> parts;
  const std::wstring_view rest = std::wstring_view(path).substr(root);
  for (std::size_t begin = 0; begin < rest.size();) {
    const std::size_t end = std::min(rest.find_first_of(L"\\/", begin), rest.size());
    const std::wstring_view part = rest.substr(begin, end - begin);
    if (part == L"..") {
      if (!parts.empty()) parts.pop_back();
    } else if (!part.empty() && part != L".") {
      parts.push_back(part);
    }
    begin = end + 1;
  }
  std::wstring resolved = path.substr(0, root);
  for (wchar_t& unit : resolved) {
    if (unit == L'/') unit = L'\\';
  }
  for (std::size_t i = 0; i < parts.size(); ++i) {
    if (!resolved.empty() && resolved.back() != L'\\') resolved += L'\\';
    resolved += parts[i];
  }
  return resolved;
}

std::wstring FullPath(const std::wstring& path) {
  const DWORD size = GetFullPathNameW(path.c_str(), 0, nullptr, nullptr);
  std::wstring full(size, L'\0');
  full.resize(size == 0 ? 0 : GetFullPathNameW(path.c_str(), size, full.data(), nullptr));
  return full.empty() ? path : full;
}

}  // namespace

std::wstring WideFromText(std::string_view text) {
  std::wstring wide;
  wide.reserve(text.size());
  while (!text.empty()) {
    char32_t code_point = 0;
    if (TakeSurrogate(&text, &code_point)) {
      wide += static_cast<wchar_t>(code_point);
    } else {
      AppendUnits(TakeCodePoint(&text, &code_point) ? code_point : kReplacementCharacter, &wide);
    }
  }
  return wide;
}

std::string TextFromWide(std::wstring_view wide) {
  std::string text;
  text.reserve(wide.size());
  for (std::size_t i = 0; i < wide.size(); ++i) {
    char32_t unit = static_cast<char16_t>(wide[i]);
    const char32_t next = i + 1 < wide.size() ? static_cast<char16_t>(wide[i + 1]) : 0;
    if (IsHighSurrogate(unit) && IsLowSurrogate(next)) {
      unit = 0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00);
      ++i;
    }
    if (IsHighSurrogate(unit) || IsLowSurrogate(unit)) {
      text += static_cast<char>(0xE0 | unit >> 12);
      text += static_cast<char>(0x80 | (unit >> 6 & 0x3F));
      text += static_cast<char>(0x80 | (unit & 0x3F));
    } else {
      AppendCodePoint(unit, &text);
    }
  }
  return text;
}

std::wstring SystemPath(std::string_view path) {
  std::wstring wide = WideFromText(path);
  if (wide.starts_with(kPrefix) || wide.starts_with(kDevicePrefix)) return wide;
  std::size_t root = RootLength(wide);
  if (root == 0) {
    wide = FullPath(wide);
    root = RootLength(wide);
  }
  if (root == 0) return wide;
  const std::wstring resolved = Resolved(wide, root);
  if (resolved.starts_with(L"\\\\")) return std::wstring(kNetworkPrefix) + resolved.substr(2);
  return std::wstring(kPrefix) + resolved;
}

std::string TextFromSystemPath(std::wstring_view path) {
  if (path.starts_with(kNetworkPrefix)) {
    return "\\\\" + TextFromWide(path.substr(kNetworkPrefix.size()));
  }
  if (path.starts_with(kPrefix)) path.remove_prefix(kPrefix.size());
  return TextFromWide(path);
}

}  // namespace quendle::platform
