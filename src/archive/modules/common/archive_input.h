// The bytes of an archive as its format counts them: without a self-extracting program in front, and with all
// volumes of a set behind each other.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/entries/input_file.h"
#include "reasons/result.h"

namespace quendle::modules {

class ArchiveInput {
 public:
  // The bytes of one file from `offset` on.
  ArchiveInput(std::shared_ptr<const platform::InputFile> file, std::uint64_t offset);

  // The bytes of several files behind each other.
  explicit ArchiveInput(std::vector<std::shared_ptr<const platform::InputFile>> volumes);

  // The same bytes from `offset` on.
  ArchiveInput From(std::uint64_t offset) const;

  std::uint64_t Size() const { return size_; }

  // As InputFile::ReadAt; a read may cross volumes.
  platform::Result ReadAt(std::uint64_t position, void* buffer, std::size_t size, std::size_t* got) const;

  // The path of the (first) file.
  const std::string& Path() const { return volumes_.front()->Path(); }
  std::vector<std::string> Paths() const;  // of all files
  // Where each volume begins, for formats that count positions in the volume.
  std::uint64_t VolumeStart(std::size_t index) const;
  std::size_t VolumeCount() const { return volumes_.size(); }
  // Is it one file from its first byte on?
  bool IsWholeFile() const { return offset_ == 0 && volumes_.size() == 1; }

  // Equal only when all files are the same and unchanged.
  std::string Identity() const;

 private:
  std::vector<std::shared_ptr<const platform::InputFile>> volumes_;
  std::vector<std::uint64_t> starts_;  // of each volume among all their bytes
  std::uint64_t offset_ = 0;           // of this input in them
  std::uint64_t size_ = 0;
};

// While it lives every read of any input on this thread asks `may_go_on` first, and is kCancelled from its first no
// on: so whatever looks for an archive or goes through its headers ends soon, without knowing who waits for it.
class InterruptibleReads {
 public:
  explicit InterruptibleReads(std::function<bool()> may_go_on);
  ~InterruptibleReads();
  InterruptibleReads(const InterruptibleReads&) = delete;
  InterruptibleReads& operator=(const InterruptibleReads&) = delete;

  bool MayGoOn();
  // Asks as a read does, for loops that do without reads. True when nobody is there to be asked.
  static bool GoOn();
  // What was found since may be wrong.
  bool AreInterrupted() const { return interrupted_; }

 private:
  std::function<bool()> may_go_on_;
  InterruptibleReads* const outer_;
  bool interrupted_ = false;
};

}  // namespace quendle::modules
