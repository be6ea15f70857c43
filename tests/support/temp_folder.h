// A folder of its own for a test, gone with the object.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <stdlib.h>

namespace quendle::test {

class TempFolder {
 public:
  // `parent` chooses the file system.
  explicit TempFolder(const std::string& parent = std::filesystem::temp_directory_path().string()) {
    std::string pattern = parent + "/quendle-test-XXXXXX";
    path_ = mkdtemp(pattern.data()) == nullptr ? "" : pattern;
  }
  ~TempFolder() {
    std::error_code ignored;  // a test that took rights away gives them back itself
    std::filesystem::remove_all(path_, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  const std::string& path() const { return path_; }
  std::string operator/(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

inline void WriteFile(const std::string& path, const std::string& bytes) {
  std::filesystem::create_directories(std::filesystem::path(path).parent_path());
  std::ofstream(path, std::ios::binary) << bytes;
}

inline std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

}  // namespace quendle::test
