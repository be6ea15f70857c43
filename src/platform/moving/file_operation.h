// Moving, copying, renaming and deleting files and folders without losing anything.
//
// What holds for every operation here: nothing is overwritten unless the observer says yes; a new file or
// folder has its final name only when it is complete, and until then a hidden temporary name beside it; after
// a failure or a cancel, source and destination are as they were and no temporary file is left. The
// exceptions are the merge of two folders (entries already settled stay settled, and the Result names the
// first that was not and says how many more), a deletion that ends early, the source of a moved folder when
// something in it cannot be removed any more (then the copy is complete and the rest of the source stays), and
// a copy that somebody else has changed before it could be taken back: both sides stay, and the reason says
// so. The observer is never null.
//
// Windows: what is given up to the recycle bin does not come back when a later step fails; the reason says
// so. Parts of a file behind a ":" are no entries and kRefused.
#pragma once

#include <cstdint>
#include <string>

#include "platform/entries/file_side.h"
#include "reasons/result.h"

namespace quendle::platform {

struct FileProgress {
  std::string path;              // the file being worked on
  std::uint64_t bytes_done = 0;  // of the whole operation
  std::uint64_t bytes_total = 0;
};

// Whom an operation reports to and asks, always on the thread that has called it.
class FileOperationObserver {
 public:
  virtual ~FileOperationObserver() = default;

  enum class Answer { kYes, kNo, kCancel };

  // Has the thread more to look after than the operation, such as windows? Then the work is done on another one.
  virtual bool MustStayResponsive() const = 0;

  // Called at the beginning, and then every 20 milliseconds or after 16 MiB, whichever comes first; only where
  // the calling thread need not stay responsive it waits while the system takes long over a single step, such
  // as a sync or the removal of a large file. False cancels, but not any more once a copy has its final name
  // and the source is removed.
  virtual bool OnProgress(const FileProgress& progress) = 0;

  // May `existing` be replaced by `incoming`? "To all" answers are the observer's to remember.
  virtual Answer OnOverwrite(const FileSide& existing, const FileSide& incoming) = 0;
};

struct FileOperationOptions {
  bool rename_on_collision = false;  // take a free name ("a (2).txt") instead of asking
  bool allow_undo = false;           // what is deleted or replaced goes to the trash instead
  bool fail_if_taken = false;        // nobody is asked and nothing merged: kExists, whatever has the name
  bool into_folder = false;          // a destination that is a folder, or leads to one, is to hold the entry
};

// Moves `source` to the exact path `destination`, whose folder must exist.
//
// Within a file system this is a rename that replaces nothing. Across file systems it is a copy with mode,
// times to the nanosecond, extended attributes, owner as far as permitted, holes and hard links inside a
// folder kept, which is synced and compared before it gets its name; only then is the source removed, and
// only if it did not change. Symbolic links are moved as links. Windows: attributes, times and named streams
// are kept, rights are those of the new folder, junctions are links, and an encrypted file is kRefused whose
// copy would not be. A file that is read-only may be moved, replaced by a yes, and deleted.
//
// A file onto an existing file asks; a folder onto an existing folder merges, and asks for each file that
// exists on both sides; answering no leaves that file in the source and makes the result kExists. An entry
// that cannot go where it would have to (a file where a folder is, or the reverse) is left, too, and the code
// of the result is that of the first one. Failures besides the system's own: kRefused for a source and
// destination that are the same file (hard links too) or a folder into itself, kIsFolder or kNotFolder when
// one is a file and the other a folder, kExists for a no, kCancelled for a cancel, kFailed when the source
// changed meanwhile, kRefused for what would have to be copied and cannot be: devices, sockets and pipes, and
// folders with another file system mounted in them.
Result MoveEntry(const std::string& source, const std::string& destination,
                 const FileOperationOptions& options, FileOperationObserver* observer);

// Copies under the same rules; the source stays and the copy is not synced. Devices, sockets and pipes are
// kRefused before anything is written.
Result CopyEntry(const std::string& source, const std::string& destination,
                 const FileOperationOptions& options, FileOperationObserver* observer);

// Removes a file or a folder with all it holds; with allow_undo it goes to the trash of its file system
// (freedesktop.org trash on POSIX, the recycle bin on Windows) and the result is a failure when there is
// none. Links are removed, not followed.
Result DeleteEntry(const std::string& path, const FileOperationOptions& options,
                   FileOperationObserver* observer);

}  // namespace quendle::platform
