// The bytes of the headers in one volume, as they stand or decrypted.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "archive/modules/common/archive_input.h"
#include "archive/modules/rar/ciphers/rar_cipher.h"

namespace quendle::modules {

class HeaderBytes {
 public:
  // Headers between here and position `end` of the input, which outlives this object.
  HeaderBytes(const ArchiveInput& input, std::uint64_t end) : input_(input), end_(end) {}

  // The headers from now on are encrypted with a block cipher each. `prefix` bytes in front of a header tell which;
  // null: none can be made.
  using MakeCipher = std::function<std::unique_ptr<RarCipher>(const std::string& prefix)>;
  void Encrypt(std::size_t prefix, MakeCipher make_cipher);
  bool AreEncrypted() const { return make_cipher_ != nullptr; }

  // Goes to the header at that position. False: the input ends before, or there is no cipher for it.
  bool Begin(std::uint64_t position);

  // Gets the header's first `size` bytes, a part of which may be there already. False: the input ends before.
  bool Read(std::size_t size);

  // What was got, at least.
  std::string_view Bytes() const { return bytes_; }

  // The position behind the header when it has that size. Encrypted ones are filled up to whole blocks.
  std::uint64_t EndOf(std::size_t size) const;

 private:
  const ArchiveInput& input_;
  const std::uint64_t end_;
  std::size_t prefix_ = 0;
  MakeCipher make_cipher_;
  std::unique_ptr<RarCipher> cipher_;
  std::uint64_t position_ = 0;  // of the header, behind its prefix
  std::string bytes_;
};

}  // namespace quendle::modules
