// Unpacks the contents of the files in an archive, one after the other.
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "archive/modules/rar/content_sums.h"
#include "archive/modules/rar/packed_content.h"
#include "archive/modules/rar/rar_headers.h"
#include "archive/modules/rar/unpack/unpacker.h"

namespace quendle::modules {

class RarContent {
 public:
  // Both outlive this object.
  RarContent(const ArchiveInput& input, RarKeys* keys) : input_(input), keys_(*keys) {}

  // Begins that file, which stays where it is. The packed files that it goes on with, if it is solid, were read to
  // their ends before.
  void Begin(const RarFile& file);

  // The next bytes of its content, never none, valid until the next call. kEnd: it is complete and its checksums hold,
  // if it has any.
  ReadStatus Read(std::string_view* piece);

  // Begins that file and reads it to its end, for the sake of those that go on with it; not further than `sink` goes on.
  void PassOver(const RarFile& file, EntrySink* sink);

  // Gives it to `sink` as that entry. `to_end`: others go on with it, so that it is unpacked even when `sink` has
  // enough of it. False: `sink` ends the reading.
  bool Give(const RarFile& file, Entry entry, bool to_end, EntrySink* sink);

  // The last answer of Read, and why it was none of kOk and kEnd.
  ReadStatus Status() const { return status_; }
  const Reason& Problem() const { return problem_; }

 private:
  ReadStatus Open();
  ReadStatus OpenUnpacker();
  ReadStatus ReadStored(std::string_view* piece);
  ReadStatus Finish();
  Reason DamagedVolume() const;

  const ArchiveInput& input_;
  RarKeys& keys_;
  const RarFile* file_ = nullptr;
  std::optional<PackedContent> packed_;
  std::optional<ContentSums> sums_;
  std::unique_ptr<Unpacker> unpacker_;
  RarPacking unpacker_packing_ = RarPacking::kUnknown;  // what it unpacks
  ReadStatus chain_ = ReadStatus::kFailed;              // whether a solid file can follow: kEnd, or why not
  bool unpacks_ = false;                                // the file at hand goes through the unpacker
  std::vector<std::uint8_t> stored_;
  ReadStatus status_ = ReadStatus::kEnd;
  Reason problem_;
};

}  // namespace quendle::modules
