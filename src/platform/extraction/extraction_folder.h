// Writing the entries of an archive below a folder, and nowhere else.
//
// Paths are safe paths as by SafeEntryPath; others are kRefused. Every folder on the way is opened without
// following links, so that nothing is written through one. A file has a hidden temporary name until it is
// complete; until it is committed, and after any failure, what was there before is untouched.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/entries/entry_time.h"
#include "platform/entries/file_side.h"
#include "platform/extraction/content_buffer.h"
#include "platform/extraction/protected_entries.h"
#include "reasons/result.h"

namespace quendle::platform {

// A failure after which no other file of the extraction can be expected to succeed.
bool ConcernsAll(Code code);

struct EntryAttributes {
  std::optional<EntryTime> write_time;  // none: now
  bool executable = false;              // for all who may read it
};

class ExtractionFolder {
 public:
  // `folder` exists; it may itself be a link.
  static Result Open(const std::string& folder, std::unique_ptr<ExtractionFolder>* opened);
  ~ExtractionFolder();  // discards what is not committed
  ExtractionFolder(const ExtractionFolder&) = delete;
  ExtractionFolder& operator=(const ExtractionFolder&) = delete;

  // From now on files get the mark of the archive, if it has one, by which Windows knows what comes from the
  // internet. Elsewhere nothing happens.
  void MarkLike(const std::string& archive);

  // From now on what would replace one of the entries, or take a name that is kept for one, is kRefused, by Look as by all
  // that makes something.
  void Protect(ProtectedEntries entries);

  // kNoSpace when the file system has less than that many bytes for this user.
  Result CheckSpace(std::uint64_t bytes) const;

  // What has the name now.
  enum class Taken {
    kFree,
    kFile,    // or a link, a pipe ...: replaced as the entry that it is, never followed
    kFolder,  // cannot be replaced
    kOurs,    // a file that this object wrote: the two names are one on this file system
  };
  struct Occupant {
    Taken taken = Taken::kFree;
    FileSide version;  // of what is there
  };
  // A failure when a folder on the way cannot be entered: a file or a link is in its place, say. kRefused, for a safe
  // path, only by what Protect was told.
  Result Look(const std::string& path, Occupant* occupant);

  // Makes the folder with all its parents; fine when it is there. Its time is set by Finish.
  Result MakeFolder(const std::string& path, const EntryAttributes& attributes);

  // Begins a file that is to be `path` one day, making its folders. `expected_size`, when known, is set aside
  // on the disk if that is cheap. Only one file at a time.
  Result BeginFile(const std::string& path, std::optional<std::uint64_t> expected_size);
  Result Write(std::string_view bytes);

  // Gives the file its name. kExists when the name is taken and not to be replaced, kIsFolder when it is a
  // folder's: the file may then be committed under another name. After any other failure it is discarded.
  enum class Replace { kNothing, kFile };
  Result CommitFile(const std::string& path, const EntryAttributes& attributes, Replace replace);
  void DiscardFile();

  // Whole files, written on several threads behind the caller's back while it goes on. They get their names in the order
  // in which they were handed over; a name that is taken by then is kExists or kIsFolder, and the file is discarded.
  // After a failure that concerns all (see ConcernsAll) none of the later ones gets its name.
  //
  // False where nothing is gained by that; nothing is to be handed over then.
  bool WritesBehind();
  bool HasRoom(std::size_t size) const;  // false: files must be taken first
  // May that path, or a folder on its way, be one of the files that are handed over and not taken? It is not to be
  // looked at, made or handed over then before they are taken.
  bool MayMeetHanded(const std::string& path);
  // `path` is free as by Look and meets none that is handed over, and there is room. A failure is at once what it is.
  Result HandFile(const std::string& path, ContentBuffer content, const EntryAttributes& attributes);
  std::size_t Handed() const;  // and not taken
  // How they ended, in their order, each once; nothing for those that wait. Waits not longer than that for the first.
  std::vector<Result> TakeHanded(std::chrono::milliseconds wait);
  // No more get their names; those that have can be taken. Nothing is to be handed over afterwards.
  void DiscardHanded();

  // A free name for an entry whose own is taken by another of the same archive:
  //   "a/b.txt" => "a/b (2).txt"
  Result FreeName(const std::string& path, std::string* free_path);

  // Notes a link to be made by Finish, when all files are written, so that none is written through it.
  // kRefused when its target is by CheckLinkTarget.
  Result AddLink(const std::string& path, const std::string& target, Replace replace);

  // Makes the noted links and sets the times of the folders. All is tried; the failures, one for each link
  // that was not made, have the link's path below the folder. To be called also after an extraction that
  // failed.
  std::vector<Result> Finish();

 private:
  class Impl;
  explicit ExtractionFolder(std::unique_ptr<Impl> impl);
  std::unique_ptr<Impl> impl_;
};

}  // namespace quendle::platform
