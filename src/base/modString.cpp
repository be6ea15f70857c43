#include "base/modString.h"

#include "platform/paths.h"
#include "platform/unicode.h"

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

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
  return platform::UpperCase(a) == platform::UpperCase(b);
}

bool FolderExists(const std::string& path) {
  return platform::IsFolder(path);
}

bool FileExists(const std::string& path) {
  if (FolderExists(path)) return false;
  if (path.find(Separator(kHostStyle)) != std::string::npos) return platform::IsTaken(path);
  return !path.empty() && !platform::FindOnSearchPath(path).empty();
}

}  // namespace quendle
