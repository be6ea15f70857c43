#include "platform/entries/path_names.h"

#include <algorithm>
#include <random>

namespace quendle::platform {
namespace {

constexpr bool kHasDrives = kHostNames == NameRules::kWindows;

bool IsSeparator(char c) {
  return kSeparators.find(c) != std::string_view::npos;
}

// "/", on Windows also "C:\", "C:" and "\\server\share\".
std::size_t RootLength(std::string_view path) {
  if (kHasDrives && path.size() >= 2 && path[1] == ':')
    return path.size() > 2 && IsSeparator(path[2]) ? 3 : 2;
  if (path.empty() || !IsSeparator(path[0])) return 0;
  if (!kHasDrives || path.size() < 2 || !IsSeparator(path[1])) return 1;
  const std::size_t share = std::min(path.find_first_of(kSeparators, 2), path.size());
  const std::size_t end = std::min(path.find_first_of(kSeparators, share + 1), path.size());
  return std::min(end + 1, path.size());
}

std::size_t NameBegin(const std::string& path) {
  return std::max(path.find_last_of(kSeparators) + 1, RootLength(path));
}

}  // namespace

std::string WithoutTrailingSlashes(std::string path) {
  while (path.size() > std::max<std::size_t>(RootLength(path), 1) && IsSeparator(path.back()))
    path.pop_back();
  return path;
}

std::string FolderOf(const std::string& path) {
  const std::size_t name = NameBegin(path);
  return name == 0 ? "." : WithoutTrailingSlashes(path.substr(0, name));
}

std::string NameOf(const std::string& path) {
  return path.substr(NameBegin(path));
}

std::string PathBelow(const std::string& folder, const std::string& name) {
  std::string path;
  path.reserve(folder.size() + 1 + name.size());
  path += folder;
  if (!path.empty() && !IsSeparator(path.back())) path += kSeparators.front();
  return path += name;
}

std::string RandomLetters() {
  constexpr char kLetters[] = "abcdefghijklmnopqrstuvwxyz234567";
  std::random_device random;
  std::string letters(8, '\0');
  for (char& letter : letters) letter = kLetters[random() % 32];
  return letters;
}

std::string TemporaryPath(const std::string& path) {
  return path.substr(0, NameBegin(path)) + ".quendle-" + RandomLetters() + ".part";
}

std::string NumberedPath(const std::string& path, unsigned number, bool is_folder) {
  const std::size_t name = NameBegin(path);
  const std::size_t dot = path.rfind('.');
  const bool has_extension = !is_folder && dot != std::string::npos && dot > name;
  std::string numbered = path;
  return numbered.insert(has_extension ? dot : path.size(), " (" + std::to_string(number) + ")");
}

}  // namespace quendle::platform
