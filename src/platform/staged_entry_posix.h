// A new entry under a hidden temporary name beside the place where it is meant to go.
#pragma once

#include <string>

#include <sys/stat.h>

#include "platform/descriptor_posix.h"
#include "platform/result.h"
#include "platform/trash_posix.h"
#include "platform/undone_at_exit.h"

namespace quendle::platform {

// What is under the temporary name is removed when the object goes, or the process by std::exit: a half-made
// copy, or what a complete one replaced.
class StagedEntry final : private UndoneAtExit {
 public:
  explicit StagedEntry(const std::string& destination);
  ~StagedEntry() { Clear(); }
  StagedEntry(const StagedEntry&) = delete;
  StagedEntry& operator=(const StagedEntry&) = delete;

  const std::string& path() const { return path_; }

  Result MakeFile(Descriptor* file);
  Result MakeLink(const std::string& target);
  Result MakeFolder();

  // Gives the complete entry its final name. With `replaced` it takes the place of that existing file, which
  // goes to the trash or is kept aside until this object goes; otherwise the name must be free.
  Result Put(const struct stat* replaced, bool to_trash);

  // Makes Put undone: what was replaced is back, and the new entry under its temporary name again.
  Result TakeBack();

 private:
  enum class Under { kNothing, kNewEntry, kReplacedFile };

  void Clear();
  void UndoAtExit() override { Clear(); }
  Result Swap(const struct stat& replaced);

  const std::string destination_;
  const std::string path_;
  Under under_path_ = Under::kNothing;
  bool is_old_lost_ = false;
  TrashedEntry trashed_;  // `file` is empty when nothing went there
};

// Renames onto an existing file that goes to the trash, or stays if the rename fails.
Result ReplaceThroughTrash(const std::string& from, const std::string& to, TrashedEntry* trashed);

}  // namespace quendle::platform
