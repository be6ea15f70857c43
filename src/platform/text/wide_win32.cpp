#include "platform/text/wide_win32.h"

#include <algorithm>
#include <vector>

#include "platform/text/unicode.h"

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

// What the system makes of "." and the like; not asked about names, whose last letters it would change.
std::wstring FullPath(const std::wstring& path) {
  const DWORD size = GetFullPathNameW(path.c_str(), 0, nullptr, nullptr);
  std::wstring full(size, L'\0');
  full.resize(size == 0 ? 0 : GetFullPathNameW(path.c_str(), size, full.data(), nullptr));
  return full;
}

bool IsDrive(std::wstring_view path) {
  return path.size() >= 2 && path[1] == L':';
}

// Counted from where the process is.
std::wstring Absolute(const std::wstring& path) {
  if (IsDrive(path)) return FullPath(path.substr(0, 2) + L'.') + L'\\' + path.substr(2);
  const bool is_below_root = !path.empty() && IsSeparator(path.front());
  return FullPath(is_below_root ? L"\\" : L".") + L'\\' + path;
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
  if (wide.starts_with(L"//?/")) std::replace(wide.begin(), wide.end(), L'/', L'\\');
  if (wide.empty() || wide.starts_with(kPrefix) || wide.starts_with(kDevicePrefix)) return wide;
  if (RootLength(wide) == 0) wide = Absolute(wide);
  if (wide.starts_with(kPrefix)) return wide;
  const std::wstring resolved = Resolved(wide, RootLength(wide));
  if (resolved.starts_with(L"\\\\")) return std::wstring(kNetworkPrefix) + resolved.substr(2);
  return std::wstring(kPrefix) + resolved;
}

std::wstring WithoutPrefix(std::wstring_view path) {
  if (path.starts_with(kNetworkPrefix)) return L"\\\\" + std::wstring(path.substr(kNetworkPrefix.size()));
  // Volumes and the like have no other name.
  if (path.starts_with(kPrefix) && IsDrive(path.substr(kPrefix.size()))) path.remove_prefix(kPrefix.size());
  return std::wstring(path);
}

std::string TextFromSystemPath(std::wstring_view path) {
  return TextFromWide(WithoutPrefix(path));
}

Result ToShellPath(const std::string& path, std::wstring* shell_path) {
  *shell_path = WithoutPrefix(SystemPath(path));
  if (shell_path->size() >= MAX_PATH) {
    return Failure(Code::kRefused, path, why::kPathTooLongForOthers);
  }
  if (FullPath(*shell_path) != *shell_path) {
    return Failure(Code::kRefused, path, why::kPathMistaken);
  }
  return Success();
}

}  // namespace quendle::platform
