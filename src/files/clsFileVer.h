// The version of a program or library.
#pragma once

#include <cstdint>
#include <string>

namespace quendle {

class clsFileVer {
 public:
  // Stores the path and reads the four numbers. A file without a version leaves them as they were.
  void pFileName(const std::string& path);
  const std::string& pFileName() const { return file_name_; }

  // The version as the file has it now, which is not stored; empty when it has none.
  //   2.56.0.3
  std::string pVersionFull() const;

  // The stored numbers, 0 to 65535. The third is called revision and the fourth build, which alone is text.
  std::string pVersionBuild() const { return std::to_string(build_); }
  std::int32_t pVersionMajor() const { return major_; }
  std::int32_t pVersionMinor() const { return minor_; }
  std::int32_t pVersionRevision() const { return revision_; }

 private:
  std::string file_name_;
  std::int32_t major_ = 0;
  std::int32_t minor_ = 0;
  std::int32_t revision_ = 0;
  std::int32_t build_ = 0;
};

}  // namespace quendle
