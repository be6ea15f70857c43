// The packed bytes of one entry, behind each other over all volumes and decrypted.
#pragma once

#include <cstddef>
#include <cstdint>

#include "reasons/reason.h"

namespace quendle::modules {

class PackedSource {
 public:
  virtual ~PackedSource() = default;

  // The next bytes, `size` (not 0) at most; as few as come at once. 0: there are no more, or Problem() says why
  // they cannot be read.
  virtual std::size_t Read(std::uint8_t* buffer, std::size_t size) = 0;

  // Empty as long as all could be read.
  virtual const Reason& Problem() const = 0;
};

}  // namespace quendle::modules
