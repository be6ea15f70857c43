// Paths and strings. Functions that depend on how a system writes paths take a PathStyle, so that both styles
// work and are tested everywhere.
#pragma once

#include <string>
#include <string_view>

namespace quendle {

enum class PathStyle {
  kWindows,  // drive letters, network shares, "\" between components ("/" is accepted where noted)
  kPosix,    // one root "/", no drives
};

#ifdef _WIN32
inline constexpr PathStyle kHostStyle = PathStyle::kWindows;
#else
inline constexpr PathStyle kHostStyle = PathStyle::kPosix;
#endif

constexpr char Separator(PathStyle style) {
  return style == PathStyle::kWindows ? '\\' : '/';
}

// The path with a separator at its end.
//   Windows: "" => ""    "C:\data" => "C:\data\"    "C:\" => "C:\"    "C:/x/" => "C:/x/\"
//   Posix:   "" => ""    "/data" => "/data/"        "/" => "/"        "a\" => "a\/"
std::string AddBackslash(std::string_view path, PathStyle style = kHostStyle);

// The path without one separator at its end, unless only a root would be left.
//   Windows: "C:\data\" => "C:\data"    "C:\" => "C:\"    "\\" => "\\"    "a\" => "a\" (three characters stay)
//   Posix:   "/data/" => "/data"        "/" => "/"        "/a/" => "/a"   "a//" => "a/"
std::string RemoveBackslash(std::string_view path, PathStyle style = kHostStyle);

// The path without any separators at its end, unless only a root would be left.
//   Posix: "/a//" => "/a"    "//" => "/"
std::string RemoveBackslashes(std::string_view path, PathStyle style = kHostStyle);

// Does the path stand for itself whatever the current folder is?
//   Windows: "C:\x" => true   "C:x" => true (any colon)   "\\server\x" => true   "x" => false   "\x" => false
//   Posix:   "/x" => true      "x:y" => false               "" => false
bool IsAbsolutePath(std::string_view path, PathStyle style = kHostStyle);

// Does it also not count from where the process is, as on Windows "C:x" does, which IsAbsolutePath lets pass?
//   Windows: "C:\x" => true   "\\server\x" => true   "C:x" => false   "C:" => false   "ab:\x" => false
//   Posix:   "/x" => true
bool IsRootedPath(std::string_view path, PathStyle style = kHostStyle);

// A path that somebody wrote, as the program writes paths: on Windows with "\" only, and without the prefixes
// of the system's own ("\\?\", "\\.\") before a drive or a share.
//   Windows: "C:/a/b" => "C:\a\b"    "\\?\C:\a/b" => "C:\a\b"    "//?/UNC/server/a" => "\\server\a"
//   Posix:   "/a\b" => "/a\b"
std::string PlainPath(std::string_view path, PathStyle style = kHostStyle);

// Does an absolute path have ".." as one of its components?
//   Posix: "/a/../b" => true    "/a/.." => true    "/a/..b" => false
bool HasParentComponent(std::string_view path, PathStyle style = kHostStyle);

// An absolute path as it is, any other after `folder` and a separator.
//   Posix: ("x", "/home") => "/home/x"    ("", "/home") => "/home/"    ("/x", "/home") => "/x"
std::string MakeAbsolute(std::string_view path, std::string_view folder, PathStyle style = kHostStyle);

// A path cut at its last separator: what stands before it and what stands after it.
//   Posix: "/a/b.txt" => "/a", "b.txt"    "/b" => "", "b"    "b" => "", "b"    "/a/" => "/a", ""
struct PathParts {
  std::string folder;
  std::string name;
};
PathParts SplitPath(std::string_view path, PathStyle style = kHostStyle);

// A name cut at its last dot. Without any dot the whole name is the extension: smart rename relies on it.
//   "A.B.C" => "A.B", "C"    "README" => "", "README"    ".profile" => "", "profile"    "a." => "a", ""
struct NameParts {
  std::string base;
  std::string extension;
};
NameParts SplitName(std::string_view name);

// The text with a double quote at either end, unless it has one there already.
//   "" => ""    a b => "a b"    "a => "a"    " => "
std::string AddQuotes(std::string_view text);

// Without blanks at the front, at the end, or both. Blanks are the characters up to U+0020 and the
// ideographic blank.
//   "　a　b\t" => "a　b"    "　 " => ""
std::string TrimBlanksLeft(std::string_view text);
std::string TrimBlanksRight(std::string_view text);
std::string TrimBlanks(std::string_view text);

// Turns lone CR or lone LF into CR LF, in place. Text that has a CR LF anywhere, or both lone CR and lone LF,
// is left as it is. True when the text has no CR LF afterwards.
//   "a\nb" => "a\r\nb", false    "a\r\nb\n" => same, false    "a\rb\nc" => same, true    "a" => same, true
bool NormalizeNewlines(std::string* text);

// A text made safe to be used as a path: on Windows the characters that its names may not hold become others
// that look like them, except in a drive root ("c:\") at its beginning; on POSIX names may hold them all.
// Full-width digits become ASCII by `mode`: 0 none, 1 those at the end of a bare name, 2 all; another mode is
// a programming error. Mode 1 is not for paths: those with a folder lose what their last part is shorter than
// they are.
//   Windows, 0: D:\in<1>\a?b => D:\in＜1＞\a？b    C:abc => C：abc    c:\a,b => c:\a，b    a"b/c => a’b／c
//   Posix, 0:   D:\in<1>\a?b => D:\in<1>\a?b     /a:b１ => /a:b１
//   either, 1:  file１２ => file12    a１b => a１b    １ => 1
//   either, 2:  a１b２ => a1b2
std::string NormalizePathChars(std::string_view text, int mode, PathStyle style = kHostStyle);

// The title of a profile as the name of a folder: as mode 0 has it, and without the separator of the style or
// a drive root. Empty when it is none: "", "." and "..".
//   Posix: a/b => a／b    a:b => a:b    .. => ""          Windows: a/b => a／b    a:\b => a：＼b
std::string TitleAsName(std::string_view title, PathStyle style = kHostStyle);

// Are the two equal after upper-casing both?
bool EqualsIgnoringCase(std::string_view a, std::string_view b);

// Is there a folder of that path? Any error is false.
bool FolderExists(const std::string& path);

// Is there something other than a folder of that path? A dangling link counts, since its name is taken. A
// bare name is also looked for along the executable search path.
bool FileExists(const std::string& path);

}  // namespace quendle
