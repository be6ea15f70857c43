// An archive as 7-Zip's library reads it: what is in it, and its contents, which the library pushes.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "archive/modules/common/entry_reader.h"
#include "archive/modules/common/sevenzip_library.h"
#include "reasons/result.h"

namespace quendle::modules {

// Bytes that are read anywhere; as ArchiveInput has them.
struct SevenZipBytes {
  std::uint64_t size = 0;
  std::function<platform::Result(std::uint64_t position, void* buffer, std::size_t size, std::size_t* got)>
      read;
};
SevenZipBytes BytesOf(const ArchiveInput& input);  // which outlives them

// Hears of contents, perhaps on another thread than the one that waits in Extract. False ends it.
class SevenZipReceiver {
 public:
  virtual ~SevenZipReceiver() = default;
  virtual bool Begin(std::uint32_t index) = 0;
  virtual bool Write(std::string_view piece) = 0;
  virtual bool End(std::uint32_t index, sevenzip::ExtractResult result) = 0;
  virtual bool GoesOn() = 0;
};

// What a result means for an entry that was packed by `method`. With a password that is not known to be right, what
// looks like damage may be its fault.
ReadStatus StatusOf(sevenzip::ExtractResult result, const std::string& method, bool may_be_locked,
                    Reason* reason);

class SevenZipArchive {
 public:
  // `password` as in ReaderOptions, but as text in UTF-8.
  SevenZipArchive(SevenZipBytes bytes, std::function<std::optional<std::string>()> password);
  ~SevenZipArchive();
  SevenZipArchive(const SevenZipArchive&) = delete;
  SevenZipArchive& operator=(const SevenZipArchive&) = delete;

  // With several threads the library unpacks parts of one stream at once, as many as a quarter of the available memory is
  // enough for.
  enum class Threads { kOne, kSeveral };

  // kPassword when its headers are encrypted and the password does not open them; `*reason` tells why not kOk.
  ReadStatus Open(std::uint8_t format, Reason* reason, Threads threads = Threads::kSeveral);

  std::uint32_t Count() const { return count_; }
  std::string Text(std::uint32_t index, sevenzip::Property property) const;
  std::optional<std::uint64_t> Number(std::uint32_t index,
                                      sevenzip::Property property) const;  // a flag is 0 or 1

  // Gives the contents of these entries, of which the indices ascend. Nothing, or why it ended before the last.
  std::optional<Reason> Extract(const std::vector<std::uint32_t>& indices, SevenZipReceiver* receiver);

 private:
  class Stream;
  class Password;
  class Opening;
  class Extracting;

  sevenzip::Variant Get(std::uint32_t index, sevenzip::Property property) const;
  ReadStatus CheckOpened(Reason* reason) const;
  void Set(Threads threads);

  std::unique_ptr<Stream> stream_;
  std::function<std::optional<std::string>()> password_;
  bool asked_ = false;  // for the password
  bool given_ = false;  // ... and there was one
  const SevenZipLibrary* library_ = nullptr;
  std::unique_ptr<sevenzip::InArchive, SevenZipLibrary::Released> archive_;
  std::uint32_t count_ = 0;
};

}  // namespace quendle::modules
