// One archiver library in memory: its functions by archiver_abi.h, its strings turned into the program's.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "archive/archiver_abi.h"
#include "platform/services/library.h"

namespace quendle {

// By the names of EntryNames: date << 16 | time of ArchiverEntry, of several entries of a name the latest; 0 where the
// library does not say it of each of them.
using EntryTimes = std::unordered_map<std::string, std::uint32_t>;

class ArchiverLibrary {
 public:
  // A library that lacks one of the required functions is a failure that names it.
  static platform::Result Load(const std::string& path, const std::string& prefix,
                               std::unique_ptr<ArchiverLibrary>* library);

  // Is the file an archive of this family? Not when the library cannot be told its path.
  bool Accepts(const std::string& path) const;

  // The entries in archive order, as the archive spells them, with "/" between the parts; empty for one that
  // has no name. None when the archive cannot be opened: a library with a session has reported why. `times`, unless
  // it is null, receives when they were written.
  std::vector<std::string> EntryNames(const std::string& archive, EntryTimes* times = nullptr) const;

  // Text for the library; nothing when its encoding cannot hold the text.
  std::optional<std::string> Encode(const std::string& text) const;
  bool TakesAllText() const { return utf8_; }
  std::string Decode(std::string_view bytes) const;

  // What the library wrote to a buffer, as text: up to the first NUL, which is kept as the sign that the text
  // is whole. Of a full buffer half a character at the end is cut.
  std::string OutputText(std::string_view buffer) const;

  // The line is encoded. 0 is success.
  std::int32_t Command(const std::string& line, char* output, std::uint32_t size) const;

  bool HasExtractCalls() const { return extract_calls_ != nullptr; }
  std::int32_t ExtractCalls(std::vector<ArchiverCall>* calls) const;

  // What it says of its makers; empty when it says nothing.
  std::string Credits() const;

  // Null ends the session. Without effect on a library that knows none.
  void SetSession(const ArchiverSession* session) const;

 private:
  explicit ArchiverLibrary(std::unique_ptr<platform::Library> library) : library_(std::move(library)) {}
  std::string Bind(const std::string& prefix);
  std::string EntryName(ArchiverHandle handle, const ArchiverEntry& entry) const;

  std::unique_ptr<platform::Library> library_;
  ArchiverCommand command_ = nullptr;
  ArchiverCheckArchive check_ = nullptr;
  ArchiverOpenArchive open_ = nullptr;
  ArchiverFindFirst find_first_ = nullptr;
  ArchiverFindNext find_next_ = nullptr;
  ArchiverCloseArchive close_ = nullptr;
  ArchiverFullName full_name_ = nullptr;
  ArchiverSetSession set_session_ = nullptr;
  ArchiverExtractCalls extract_calls_ = nullptr;
  ArchiverCredits credits_ = nullptr;
  bool utf8_ = false;
};

}  // namespace quendle
