// A file that is read at any position.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "reasons/result.h"

namespace quendle::platform {

class InputFile {
 public:
  // Opens a file that has positions: folders are kIsFolder, pipes and devices kRefused.
  static Result Open(const std::string& path, std::unique_ptr<InputFile>* file);
  ~InputFile();
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  const std::string& Path() const { return path_; }
  std::uint64_t Size() const { return size_; }  // when it was opened

  // Reads `size` bytes at `position` unless the file ends before; `*got` is the number of bytes read.
  Result ReadAt(std::uint64_t position, void* buffer, std::size_t size, std::size_t* got) const;

  // Equal for two objects only when they read the same, unchanged file: device and number on it, size, time of
  // change.
  const std::string& Identity() const { return identity_; }

 private:
  InputFile(std::string path, std::intptr_t handle, std::uint64_t size, std::string identity);

  std::string path_;
  std::intptr_t handle_;  // a descriptor, or a HANDLE
  std::uint64_t size_;
  std::string identity_;
};

}  // namespace quendle::platform
