// The packed bytes of a file where they stand in an archive.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "archive/modules/common/archive_input.h"
#include "archive/modules/lz/packed_source.h"
#include "archive/modules/rar/ciphers/rar_cipher.h"
#include "archive/modules/rar/rar_headers.h"

namespace quendle::modules {

class PackedContent final : public PackedSource {
 public:
  // The parts behind each other, decrypted unless `cipher` is null. The input and the parts outlive this object.
  PackedContent(const ArchiveInput& input, const std::vector<RarPart>& parts,
                std::unique_ptr<RarCipher> cipher)
      : input_(input), parts_(parts), cipher_(std::move(cipher)) {}

  std::size_t Read(std::uint8_t* buffer, std::size_t size) override;
  const Reason& Problem() const override { return problem_; }

 private:
  std::size_t ReadParts(std::uint8_t* buffer, std::size_t size);
  std::size_t ReadBlocks(std::uint8_t* buffer, std::size_t size);

  const ArchiveInput& input_;
  const std::vector<RarPart>& parts_;
  std::unique_ptr<RarCipher> cipher_;
  std::size_t part_ = 0;             // at hand
  std::uint64_t position_ = 0;       // in it
  std::vector<std::uint8_t> block_;  // decrypted bytes for which there was no room
  Reason problem_;
};

}  // namespace quendle::modules
