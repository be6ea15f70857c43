// A folder of its own for a test, gone with the object.
#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

namespace quendle {

namespace fs = std::filesystem;  // in every test

namespace test {

inline constexpr char kSeparator = static_cast<char>(fs::path::preferred_separator);

// A path that a test writes with slashes, as the system writes it.
inline std::string Native(std::string path) {
  std::replace(path.begin(), path.end(), '/', kSeparator);
  return path;
}

// An absolute path that a test writes as on POSIX, as the system writes one: "/a/b" => "C:\a\b" on Windows.
inline std::string Rooted(const std::string& path) {
  return kSeparator == '/' ? path : "C:" + Native(path);
}

// The library takes plain strings for text of the C locale, save on POSIX.
inline fs::path FsPath(const std::string& path) {
  return fs::path(std::u8string(path.begin(), path.end()));
}
inline std::string TextOf(const fs::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

// What Windows makes of a path is not wanted: it takes dots and blanks off the end of a name.
inline fs::path ExactPath(const std::string& path) {
  return FsPath(path.size() > 2 && path.compare(1, 2, ":\\") == 0 ? "\\\\?\\" + Native(path) : path);
}

class TempFolder {
 public:
  // `parent` chooses the file system.
  explicit TempFolder(const std::string& parent = TextOf(fs::temp_directory_path())) {
    std::random_device random;
    std::error_code error;
    do {
      const auto name = "quendle-test-" + std::to_string(random());
      path_ = TextOf((FsPath(parent) / name).make_preferred());
    } while (!fs::create_directory(FsPath(path_), error) && !error);
    if (error) path_.clear();
    fs::permissions(FsPath(path_), fs::perms::owner_all, error);
  }
  ~TempFolder() {
    std::error_code ignored;  // a test that took rights away gives them back itself
    fs::remove_all(ExactPath(path_), ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  const std::string& path() const { return path_; }
  std::string operator/(const std::string& name) const { return path_ + kSeparator + Native(name); }

 private:
  std::string path_;
};

inline void WriteFile(const std::string& path, const std::string& bytes) {
  fs::create_directories(FsPath(path).parent_path());
  std::ofstream(ExactPath(path), std::ios::binary) << bytes;
}

inline std::string ReadFile(const std::string& path) {
  std::ifstream in(ExactPath(path), std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

}  // namespace test
}  // namespace quendle
