// Whether a content is what its header says.
#pragma once

#include <cstdint>
#include <string_view>

#include "archive/modules/common/checksum.h"
#include "archive/modules/rar/ciphers/blake2sp.h"
#include "archive/modules/rar/ciphers/rotating_sum.h"
#include "archive/modules/rar/rar_headers.h"

namespace quendle::modules {

class ContentSums {
 public:
  // The file outlives this object.
  explicit ContentSums(const RarFile& file) : file_(file) {}

  void Add(std::string_view bytes);

  // Of all that was added. `keys`: of a file whose checksums are keyed. Empty when everything holds; a file without
  // checksums is only as long as it should be.
  Reason Check(const Rar5Keys* keys) const;

  std::uint64_t Size() const { return size_; }

 private:
  const RarFile& file_;
  std::uint64_t size_ = 0;
  Crc32Sum crc_;
  RotatingSum rotating_;
  Blake2sp blake2sp_;
};

}  // namespace quendle::modules
