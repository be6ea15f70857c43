#include "base/modString.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "base/modSystem.h"
#include "platform/entries/paths.h"
#include "platform/text/unicode.h"

namespace quendle {
namespace {

constexpr std::string_view kIdeographicBlank = "\u3000";

// The part of a path that RemoveBackslash never shortens.
std::size_t RootLength(PathStyle style) {
  return style == PathStyle::kWindows ? 3 : 1;
}

bool IsBlankByte(char c) {
  return static_cast<unsigned char>(c) <= 0x20;
}

using Replacement = std::pair<std::string_view, std::string_view>;

// What names on Windows may not hold. "\" is not among them: it separates the parts of a path.
constexpr std::array<Replacement, 10> kForbidden = {{{",", "，"},
                                                     {":", "："},
                                                     {";", "；"},
                                                     {"*", "＊"},
                                                     {"?", "？"},
                                                     {"<", "＜"},
                                                     {">", "＞"},
                                                     {"|", "｜"},
                                                     {"/", "／"},
                                                     {"\"", "’"}}};

constexpr std::array<Replacement, 10> kFullWidthDigits = {{{"０", "0"},
                                                           {"１", "1"},
                                                           {"２", "2"},
                                                           {"３", "3"},
                                                           {"４", "4"},
                                                           {"５", "5"},
                                                           {"６", "6"},
                                                           {"７", "7"},
                                                           {"８", "8"},
                                                           {"９", "9"}}};

// The code points of the text, each as it stands there; a byte that is part of none is one of its own.
std::vector<std::string_view> Characters(std::string_view text) {
  std::vector<std::string_view> characters;
  while (!text.empty()) {
    std::string_view rest = text;
    char32_t code_point = 0;
    platform::TakeCodePoint(&rest, &code_point);
    characters.push_back(text.substr(0, text.size() - rest.size()));
    text = rest;
  }
  return characters;
}

const Replacement* FindReplacement(std::string_view character, const std::array<Replacement, 10>& table) {
  for (const Replacement& row : table) {
    if (row.first == character) return &row;
  }
  return nullptr;
}

std::string Replaced(std::string_view text, const std::array<Replacement, 10>& table) {
  std::string result;
  for (const std::string_view character : Characters(text)) {
    const Replacement* row = FindReplacement(character, table);
    result += row == nullptr ? character : row->second;
  }
  return result;
}

bool HasDriveRoot(std::string_view text) {
  if (text.size() < 3) return false;
  const char letter = static_cast<char>(text[0] & ~0x20);
  return letter >= 'A' && letter <= 'Z' && text[1] == ':' && text[2] == '\\';
}

// Callers give a bare name: of a path, the front is cut as if its last part were all of it.
std::string WithAsciiNumberAtEnd(const std::string& text, PathStyle style) {
  const std::vector<std::string_view> all = Characters(text);
  const std::vector<std::string_view> last =
      Characters(std::string_view(text).substr(text.rfind(Separator(style)) + 1));
  std::size_t digits = 0;
  while (digits < last.size() && FindReplacement(last[last.size() - 1 - digits], kFullWidthDigits)) ++digits;
  if (digits == 0) return text;
  std::string result;
  for (std::size_t i = 0; i < last.size() - digits; ++i) result += all[i];
  for (std::size_t i = all.size() - digits; i < all.size(); ++i) result += Replaced(all[i], kFullWidthDigits);
  return result;
}

}  // namespace

std::string AddBackslash(std::string_view path, PathStyle style) {
  std::string result(path);
  if (!result.empty() && result.back() != Separator(style)) result += Separator(style);
  return result;
}

std::string RemoveBackslash(std::string_view path, PathStyle style) {
  if (path.size() > RootLength(style) && path.back() == Separator(style)) path.remove_suffix(1);
  return std::string(path);
}

std::string RemoveBackslashes(std::string_view path, PathStyle style) {
  while (path.size() > RootLength(style) && path.back() == Separator(style)) path.remove_suffix(1);
  return std::string(path);
}

bool IsAbsolutePath(std::string_view path, PathStyle style) {
  if (style == PathStyle::kPosix) return path.substr(0, 1) == "/";
  return path.find(':') != std::string_view::npos || path.substr(0, 2) == "\\\\";
}

bool IsRootedPath(std::string_view path, PathStyle style) {
  if (style == PathStyle::kPosix) return IsAbsolutePath(path, style);
  return HasDriveRoot(path) || (path.starts_with("\\\\") && path.size() > 2 && path[2] != '\\');
}

std::string PlainPath(std::string_view path, PathStyle style) {
  std::string plain(path);
  if (style == PathStyle::kPosix) return plain;
  std::replace(plain.begin(), plain.end(), '/', '\\');
  constexpr std::size_t kPrefix = 4;
  constexpr std::string_view kShare = "UNC\\";
  if (!plain.starts_with("\\\\?\\") && !plain.starts_with("\\\\.\\")) return plain;
  std::string rest = plain.substr(kPrefix);
  if (HasDriveRoot(rest)) return rest;
  const bool is_share = EqualsIgnoringCase(rest.substr(0, kShare.size()), kShare);
  return is_share ? "\\\\" + rest.substr(kShare.size()) : plain;
}

bool HasParentComponent(std::string_view path, PathStyle style) {
  const char separator = Separator(style);
  return AddBackslash(path, style).find(std::string{separator, '.', '.', separator}) != std::string::npos;
}

std::string MakeAbsolute(std::string_view path, std::string_view folder, PathStyle style) {
  return IsAbsolutePath(path, style) ? std::string(path) : AddBackslash(folder, style).append(path);
}

PathParts SplitPath(std::string_view path, PathStyle style) {
  const std::size_t cut = path.rfind(Separator(style));
  if (cut == std::string_view::npos) return {"", std::string(path)};
  return {std::string(path.substr(0, cut)), std::string(path.substr(cut + 1))};
}

NameParts SplitName(std::string_view name) {
  const std::size_t dot = name.rfind('.');
  if (dot == std::string_view::npos) return {"", std::string(name)};
  return {std::string(name.substr(0, dot)), std::string(name.substr(dot + 1))};
}

std::string AddQuotes(std::string_view text) {
  if (text.empty()) return "";
  std::string quoted(text);
  if (quoted.front() != '"') quoted.insert(quoted.begin(), '"');
  if (quoted.back() != '"') quoted.push_back('"');
  return quoted;
}

std::string TrimBlanksLeft(std::string_view text) {
  while (!text.empty()) {
    if (IsBlankByte(text.front())) {
      text.remove_prefix(1);
    } else if (text.starts_with(kIdeographicBlank)) {
      text.remove_prefix(kIdeographicBlank.size());
    } else {
      break;
    }
  }
  return std::string(text);
}

std::string TrimBlanksRight(std::string_view text) {
  while (!text.empty()) {
    if (IsBlankByte(text.back())) {
      text.remove_suffix(1);
    } else if (text.ends_with(kIdeographicBlank)) {
      text.remove_suffix(kIdeographicBlank.size());
    } else {
      break;
    }
  }
  return std::string(text);
}

std::string TrimBlanks(std::string_view text) {
  return TrimBlanksRight(TrimBlanksLeft(text));
}

bool NormalizeNewlines(std::string* text) {
  if (text->find("\r\n") != std::string::npos) return false;
  const bool has_cr = text->find('\r') != std::string::npos;
  const bool has_lf = text->find('\n') != std::string::npos;
  if (has_cr == has_lf) return true;  // neither, or a mixture that is left alone
  std::string normal;
  normal.reserve(text->size() + text->size() / 16);
  for (const char c : *text) {
    if (c == '\r' || c == '\n') {
      normal += "\r\n";
    } else {
      normal += c;
    }
  }
  *text = std::move(normal);
  return false;
}

std::string NormalizePathChars(std::string_view text, int mode, PathStyle style) {
  std::string result(text);
  if (style == PathStyle::kWindows) {
    const std::size_t root = HasDriveRoot(text) ? 3 : 0;
    result = std::string(text.substr(0, root)) + Replaced(text.substr(root), kForbidden);
  }
  switch (mode) {
    case 0:
      return result;
    case 1:
      return WithAsciiNumberAtEnd(result, style);
    case 2:
      return Replaced(result, kFullWidthDigits);
    default:
      ProgrammingError("no such mode of path characters");
  }
}

std::string TitleAsName(std::string_view title, PathStyle style) {
  if (title.empty() || title == "." || title == "..") return "";
  std::string name = style == PathStyle::kWindows ? Replaced(title, kForbidden) : std::string(title);
  const std::string_view wide = style == PathStyle::kWindows ? "＼" : "／";
  for (std::size_t at; (at = name.find(Separator(style))) != std::string::npos;) name.replace(at, 1, wide);
  return name;
}

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
  return platform::UpperCase(a) == platform::UpperCase(b);
}

bool FolderExists(const std::string& path) {
  return platform::IsFolder(path);
}

bool FileExists(const std::string& path) {
  if (path.find(Separator(kHostStyle)) != std::string::npos) return platform::IsTakenByFile(path);
  return !path.empty() && !FolderExists(path) && !platform::FindOnSearchPath(path).empty();
}

}  // namespace quendle
