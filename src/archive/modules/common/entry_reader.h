// How the entries of an archive are read, whichever library underneath does it.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "archive/modules/common/archive_input.h"
#include "platform/extraction/content_buffer.h"
#include "platform/extraction/extraction_folder.h"

namespace quendle::modules {

using platform::ContentBuffer;

// Beyond what anybody packs; a list of more would only fill the memory.
inline constexpr std::size_t kMostEntries = 4'000'000;

enum class EntryKind {
  kFile,
  kFolder,
  kLink,   // symbolic
  kOther,  // hard link, device, pipe ...: never extracted
};

struct Entry {
  // As the archive has it, decoded to UTF-8 and otherwise raw: anything may be in it, ".." and NUL too. "/"
  // between the parts, which is also what a "\" has become; folders end with one.
  std::string path;
  EntryKind kind = EntryKind::kFile;
  std::string link_target;
  std::optional<std::uint64_t> size;  // bytes of content; not always known beforehand
  std::uint64_t packed_size = 0;
  std::uint32_t crc = 0;  // as the format has it; 0: none
  platform::EntryAttributes attributes;
  bool encrypted = false;
  std::string method;  // how it is packed, in the format's own words such as "-lh5-"; may be empty
};

enum class ReadStatus {
  kOk,
  kEnd,          // no more entries; of content: it is complete and its checksum held
  kFailed,       // damaged, or unreadable
  kUnsupported,  // packed in a way that this engine does not know; another may
  kPassword,     // encrypted, and no password fits
};

struct ReaderOptions {
  std::string charset;  // of names that do not say theirs; empty: see DecodeName
  // The one password for this reading, in the bytes that the format takes; nothing when there is none. The same
  // at every call. What it does not open is read again with the next one, by another reader. Never null.
  std::function<std::optional<std::string>()> password;
};

// Takes what a reader unpacks. A false, or kStop, ends the reading: nobody wants more.
class EntrySink {
 public:
  virtual ~EntrySink() = default;

  // Is the content of this entry wanted, or a link's target? Asked of every entry, once and in their order, before it begins.
  virtual bool Wants(const Entry& entry) = 0;

  // The next entry. Content and one End follow when it is wanted.
  virtual bool Begin(Entry entry, bool is_wanted) = 0;

  // kSkip: the rest of this entry is not wanted any more, nor its end.
  enum class Wish { kMore, kSkip, kStop };
  virtual Wish Content(std::string_view piece) = 0;

  // The whole content at once, for who has it in memory; nothing else comes before End.
  virtual Wish Whole(ContentBuffer content) {
    return content.View().empty() ? Wish::kMore : Content(content.View());
  }

  virtual bool End(ReadStatus status, const Reason& problem) = 0;

  // Is anything wanted still? For readers that are long without giving anything; asked on any thread.
  virtual bool GoesOn() = 0;
};

// Gives an entry whose content is whole and right. False: `sink` ends the reading.
bool GiveWhole(Entry entry, ContentBuffer content, EntrySink* sink);

// An archive from its first entry to its last, as one library reads it. It is either listed or unpacked, once.
// Whatever is in the archive, each call ends and the entries are finitely many; contents that are wrong are
// never called complete.
class ArchiveReader {
 public:
  virtual ~ArchiveReader() = default;

  // Lists: goes to the next entry. After anything but kOk there are no more entries, and after kFailed,
  // kUnsupported and kPassword the archive is not whole.
  virtual ReadStatus NextEntry(Entry* entry) = 0;

  // Unpacks: gives `sink` the entries, until it ends that. Answers as NextEntry does behind the last one.
  virtual ReadStatus Unpack(EntrySink* sink) = 0;

  // Why the last answer was kFailed, kUnsupported or kPassword.
  virtual const Reason& Problem() const = 0;
};

// A reader from which contents can be fetched; content of an entry that was not read is skipped by NextEntry.
class EntryReader : public ArchiveReader {
 public:
  // The next piece of the current file's content, never an empty one, valid until the next call. After
  // anything but kOk the entry is over, but NextEntry may be called.
  virtual ReadStatus ReadContent(std::string_view* piece) = 0;

  ReadStatus Unpack(EntrySink* sink) override;

 protected:
  // Gives the entry that NextEntry gave last, and its content when it is wanted. False: `sink` ends the reading.
  bool GiveCurrent(Entry entry, bool is_wanted, EntrySink* sink);
};

// One library underneath, as a family uses it. Open gives a reader, or null with the reason, for an archive of
// which `input` holds the bytes and which outlives the reader.
struct Engine {
  const char* name;
  std::function<std::unique_ptr<ArchiveReader>(const ArchiveInput& input, const ReaderOptions& options,
                                               Reason* reason)>
      open;
};

}  // namespace quendle::modules
