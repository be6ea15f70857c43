// Unpacking the content of an entry, by whatever method it is packed.
#pragma once

#include <cstddef>
#include <memory>

#include "archive/modules/common/entry_reader.h"
#include "archive/modules/lzh/lzh_headers.h"
#include "archive/modules/lzh/packed_bytes.h"

namespace quendle::modules {

class LzhUnpacker {
 public:
  virtual ~LzhUnpacker() = default;

  // The next bytes of the content, `size` (not 0) at most. 0: it is complete, or the packed data give no more.
  // Whether these are the right bytes, only their checksum tells.
  virtual std::size_t Read(char* buffer, std::size_t size) = 0;
};

// For the entry of that header, whose packed bytes are `packed` and outlive the unpacker. `*unpacker` is null
// after anything but kOk, and `*reason` says why: the method is not known, or the data do not fit it.
ReadStatus MakeLzhUnpacker(const LzhHeader& header, PackedBytes* packed,
                           std::unique_ptr<LzhUnpacker>* unpacker, Reason* reason);

}  // namespace quendle::modules
