// The bytes of an archive as libarchive reads them.
#pragma once

#include <archive.h>

#include <cstdint>
#include <vector>

#include "archive/modules/common/archive_input.h"
#include "archive/modules/common/libarchive_reader.h"

namespace quendle::modules {

class LibarchiveSource {
 public:
  // `input` outlives the object.
  LibarchiveSource(const ArchiveInput& input, Ending ending);

  // Makes `library` read from this object, which stays where it is.
  void Attach(archive* library);

 private:
  static la_ssize_t Read(archive* library, void* self, const void** bytes);
  static la_int64_t Skip(archive* library, void* self, la_int64_t request);
  static la_int64_t Seek(archive* library, void* self, la_int64_t offset, int origin);

  const ArchiveInput& input_;
  Ending ending_;
  std::uint64_t beginning_;  // bytes of the input that are shown
  std::uint64_t size_;
  std::uint64_t position_ = 0;
  std::vector<char> buffer_;
};

}  // namespace quendle::modules
