#include "platform/entries/entry_path.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "platform/text/unicode.h"

namespace quendle::platform {
namespace {

constexpr std::string_view kAnySeparator = "/\\";

// The whole needs no room for the destination on POSIX, where folders are entered one after the other. Its
// limit keeps a name from making folders that no program can reach by their path. The 32767 units of Windows
// are for the full path, of which the destination gets the rest.
struct Limits {
  std::size_t part;
  std::size_t whole;
};
constexpr Limits LimitsOf(NameRules rules) {
  return rules == NameRules::kPosix ? Limits{255, 4095} : Limits{255, 32000};
}

// In the unit of the limits: bytes, or UTF-16 units.
std::size_t LengthOf(std::string_view text, NameRules rules) {
  if (rules == NameRules::kPosix) return text.size();
  std::size_t units = 0;
  for (const char byte : text) {
    const auto value = static_cast<unsigned char>(byte);
    if ((value & 0xC0) != 0x80) units += value >= 0xF0 ? 2 : 1;  // each first byte is a character
  }
  return units;
}

// Takes the first part and the separator behind it off `rest`.
std::string_view TakePart(std::string_view* rest, std::string_view separators) {
  const auto separator = std::find_first_of(rest->begin(), rest->end(), separators.begin(), separators.end());
  const auto end = static_cast<std::size_t>(separator - rest->begin());
  const std::string_view part = rest->substr(0, end);
  rest->remove_prefix(std::min(end + 1, rest->size()));
  return part;
}

bool IsAbsolute(std::string_view path) {
  return !path.empty() && kAnySeparator.find(path.front()) != std::string_view::npos;
}

bool HasDrive(std::string_view part) {
  if (part.size() < 2 || part[1] != ':') return false;
  return (part[0] >= 'A' && part[0] <= 'Z') || (part[0] >= 'a' && part[0] <= 'z');
}

bool IsControl(char32_t code_point) {
  return code_point < 0x20 || (code_point >= 0x7F && code_point < 0xA0);
}

// Windows takes such a name for the device whatever extension follows it, also behind blanks.
bool IsDevice(std::string_view part) {
  std::string_view base = part.substr(0, part.find('.'));
  base = base.substr(0, base.find_last_not_of(' ') + 1);
  const std::string name = UpperCase(base);
  for (const char* device : {"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$"}) {
    if (name == device) return true;
  }
  if (!name.starts_with("COM") && !name.starts_with("LPT")) return false;
  const std::string_view port = std::string_view(name).substr(3);
  return (port.size() == 1 && port[0] >= '0' && port[0] <= '9') || port == "¹" || port == "²" || port == "³";
}

std::string SafePart(std::string_view part, NameRules rules) {
  const std::string_view forbidden = rules == NameRules::kWindows ? ":*?\"<>|" : "";
  const auto is_forbidden = [&](char c) { return forbidden.find(c) != std::string_view::npos; };
  const auto is_plain = [&](char c) { return c >= 0x20 && c < 0x7F && !is_forbidden(c); };
  const auto plain = std::find_if_not(part.begin(), part.end(), is_plain) - part.begin();
  std::string safe(part.substr(0, static_cast<std::size_t>(plain)));
  part.remove_prefix(safe.size());
  while (!part.empty()) {
    char32_t code_point = 0;
    TakeCodePoint(&part, &code_point);
    const bool bad =
        IsControl(code_point) || (code_point < 0x80 && is_forbidden(static_cast<char>(code_point)));
    AppendCodePoint(bad ? U'_' : code_point, &safe);
  }
  if (rules == NameRules::kWindows) {
    if (safe.back() == ' ' || safe.back() == '.') safe.back() = '_';
    if (IsDevice(safe)) safe.insert(0, 1, '_');
  }
  return safe;
}

Result Refused(std::string_view name, Reason reason) {
  return Failure(Code::kRefused, std::string(name), std::move(reason));
}

// With "\" the answer would be another on Windows than elsewhere, hence the choice of separators.
bool StaysInside(std::string_view target, std::size_t depth, std::string_view separators) {
  bool at_beginning = true;
  std::size_t up = 0;
  while (!target.empty()) {
    const std::string_view part = TakePart(&target, separators);
    if (part == "..") {
      if (!at_beginning || ++up > depth) return false;
    } else if (!part.empty() && part != ".") {
      at_beginning = false;
    }
  }
  return true;
}

// Is it a path that Windows takes as it stands, such as "\\?\C:\x"?
bool IsVerbatim(std::string_view path) {
  return path.size() >= 4 && IsAbsolute(path) && IsAbsolute(path.substr(1)) && path[2] == '?' &&
         IsAbsolute(path.substr(3));
}

}  // namespace

std::string_view WithoutRoot(std::string_view name) {
  // What one system takes for a name may leave a root of the other's behind: "/C:/x", "C:C:x".
  while (!name.empty()) {
    std::string_view rest = name;
    const std::string_view part = TakePart(&rest, kAnySeparator);
    if (IsVerbatim(name)) {
      name.remove_prefix(4);
    } else if (part.empty() || part == ".") {
      name = rest;
    } else if (HasDrive(part)) {
      name.remove_prefix(2);
    } else {
      break;
    }
  }
  return name;
}

Result SafeEntryPath(std::string_view name, NameRules rules, std::string* path) {
  if (name.find('\0') != std::string_view::npos) return Refused(name, why::kNameHasNul);
  if (!IsUtf8(name)) return Refused(name, why::kNameNotUtf8);
  if (IsAbsolute(name)) return Refused(name, why::kNameAbsolute);
  const Limits limits = LimitsOf(rules);
  std::string safe;
  for (std::string_view rest = name; !rest.empty();) {
    const std::string_view part = TakePart(&rest, kAnySeparator);
    if (part.empty() || part == ".") continue;
    if (part == "..") return Refused(name, why::kNameGoesUp);
    if (safe.empty() && HasDrive(part)) return Refused(name, why::kNameHasDrive);
    const std::string safe_part = SafePart(part, rules);
    if (LengthOf(safe_part, rules) > limits.part) return Refused(name, why::kPartTooLong);
    if (!safe.empty()) safe += '/';
    safe += safe_part;
  }
  if (safe.empty()) return Refused(name, why::kNameEmpty);
  if (LengthOf(safe, rules) > limits.whole) return Refused(name, why::kNameTooLong);
  *path = std::move(safe);
  return Success();
}

Result SafeRestOfPath(std::string_view rest, NameRules rules, std::string* path) {
  constexpr std::string_view kAbove = "_/";
  std::string whole;
  Result result = SafeEntryPath(std::string(kAbove).append(rest), rules, &whole);
  result.path = result.ok() ? "" : std::string(rest);
  if (result.ok()) *path = whole.substr(std::min(kAbove.size(), whole.size()));
  return result;
}

Result CheckLinkTarget(std::string_view path, std::string_view target) {
  if (target.empty() || target.find('\0') != std::string_view::npos) return Refused(path, why::kLinkNowhere);
  const auto depth = static_cast<std::size_t>(std::count(path.begin(), path.end(), '/'));
  if (IsAbsolute(target) || HasDrive(target) || !StaysInside(target, depth, "/") ||
      !StaysInside(target, depth, kAnySeparator)) {
    return Refused(path, why::kLinkLeadsOut);
  }
  return Success();
}

}  // namespace quendle::platform
