// Paths as text, with the separators of the host: "/", on Windows "\" as well.
#pragma once

#include <string>
#include <string_view>

namespace quendle::platform {

// How names are written and what they may be.
enum class NameRules { kPosix, kWindows };

#ifdef _WIN32
inline constexpr NameRules kHostNames = NameRules::kWindows;
#else
inline constexpr NameRules kHostNames = NameRules::kPosix;
#endif

inline constexpr std::string_view kSeparators = kHostNames == NameRules::kWindows ? "\\/" : "/";

// Without the separators at its end, which would make the system follow a link; a root keeps its own.
std::string WithoutTrailingSlashes(std::string path);

// The folder that holds the entry, "." for a bare name, and the entry's name in it, which is empty for a
// root.
std::string FolderOf(const std::string& path);
std::string NameOf(const std::string& path);

// The path of an entry in a folder.
//   ("/d", "a") => "/d/a"    ("/", "a") => "/a"
std::string PathBelow(const std::string& folder, const std::string& name);

// Eight letters and digits at random.
std::string RandomLetters();

// A hidden name beside `path` for what is to become it. One that is taken all the same, of a million million,
// makes the operation fail, nothing worse.
//   "/d/name" => "/d/.quendle-abcdefgh.part"
std::string TemporaryPath(const std::string& path);

// "name.ext" => "name (2).ext"; folders and hidden files without another dot have no extension.
std::string NumberedPath(const std::string& path, unsigned number, bool is_folder);

}  // namespace quendle::platform
