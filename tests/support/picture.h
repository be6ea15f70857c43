// Pictures of what is in a folder, and dates of files.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <string>

#include "support/temp_folder.h"

namespace quendle::test {

// The opposite of Native().
inline std::string Slashed(std::string path) {
  std::replace(path.begin(), path.end(), kSeparator, '/');
  return path;
}

// Every entry below the folder, hidden ones too, with enough about it to notice any change of content.
inline std::map<std::string, std::string> Picture(const std::string& folder) {
  std::map<std::string, std::string> picture;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(FsPath(folder))) {
    const fs::path& path = entry.path();
    std::string& what = picture[Slashed(TextOf(path.lexically_relative(FsPath(folder))))];
    if (entry.is_symlink()) {
      what = "link to " + Slashed(TextOf(fs::read_symlink(path)));
    } else if (entry.is_directory()) {
      what = "folder";
    } else if (entry.is_regular_file()) {
      std::string bytes(entry.file_size(), 0);
      std::ifstream(path, std::ios::binary).read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
      what = bytes.size() < 100
                 ? "file " + bytes
                 : std::to_string(bytes.size()) + " " + std::to_string(std::hash<std::string>{}(bytes));
    } else {
      what = "other";
    }
  }
  return picture;
}

// The same in one line: "d/ d/a.txt=its content d/link>target pipe?".
inline std::string Listing(const std::string& folder) {
  std::string listing;
  for (const auto& [name, what] : Picture(folder)) {
    listing.append(listing.empty() ? "" : " ").append(name);
    if (what.starts_with("link to ")) {
      listing.append(">").append(what.substr(8));
    } else if (what == "folder" || what == "other") {
      listing.append(what == "folder" ? "/" : "?");
    } else {
      listing.append("=").append(what.starts_with("file ") ? what.substr(5) : what);
    }
  }
  return listing;
}

inline void SetWriteTime(const std::string& path, std::int64_t seconds) {
  const std::chrono::sys_time<std::chrono::seconds> time{std::chrono::seconds(seconds)};
  fs::last_write_time(ExactPath(path), std::chrono::file_clock::from_sys(time));
}

}  // namespace quendle::test
