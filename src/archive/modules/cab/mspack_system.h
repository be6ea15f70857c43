// The files that libmspack sees: cabinets in an input, to be read, and one that takes what comes out.
#pragma once

#include <mspack.h>

#include <cstdint>
#include <string>
#include <vector>

#include "archive/modules/common/archive_input.h"

namespace quendle::modules {

class MspackSystem {
 public:
  explicit MspackSystem(const ArchiveInput& input);
  MspackSystem(const MspackSystem&) = delete;
  MspackSystem& operator=(const MspackSystem&) = delete;

  mspack_system* Get() { return &functions_.system; }

  // The library's name for a volume, valid as long as this. Any name will do for what is written.
  const char* NameOf(std::size_t volume) const { return names_[volume].c_str(); }

  // What was written since it was cleared.
  std::string& Output() { return output_; }

 private:
  struct File;
  struct Functions {
    mspack_system system;  // first, so that the library's pointer to it is one to all of this
    MspackSystem* owner;
  };

  static mspack_file* Open(mspack_system* self, const char* name, int mode);
  static void Close(mspack_file* file);
  static int Read(mspack_file* file, void* buffer, int size);
  static int Write(mspack_file* file, void* buffer, int size);
  static int Seek(mspack_file* file, off_t offset, int mode);
  static off_t Tell(mspack_file* file);

  const ArchiveInput& input_;
  Functions functions_;
  std::vector<std::string> names_;  // the numbers of the volumes; the library keeps only pointers to them
  std::string output_;
};

}  // namespace quendle::modules
