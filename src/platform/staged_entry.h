// A new entry under a hidden temporary name beside the place where it is meant to go.
#pragma once

#include <string>

#include "platform/open_folder.h"
#include "platform/result.h"
#include "platform/system_handle.h"
#include "platform/trash.h"
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

  // Comes first.
  Result OpenItsFolder();

  const std::string& path() const { return path_; }
  const OpenFolder& folder() const { return folder_; }
  const std::string& name() const { return name_; }

  Result MakeFile(SystemHandle* file);
  // As OpenFolder::MakeLinkLike.
  Result MakeLink(const std::string& content, const EntryStatus& recorded);
  Result MakeFolder();

  // Gives the complete entry its final name. With `replaced` it takes the place of that existing file, which
  // goes to the trash or is kept aside until this object goes; otherwise the name must be free.
  Result Put(const EntryStatus* replaced, bool to_trash);

  // Makes Put undone: what was replaced is back, and the new entry under its temporary name again.
  Result TakeBack();

 private:
  enum class Under { kNothing, kNewEntry, kReplacedFile };

  void Clear();
  void UndoAtExit() override { Clear(); }
  Result Made(Result result);
  Result Swap(const EntryStatus& replaced);

  const std::string destination_;
  const std::string path_;
  const std::string name_;
  OpenFolder folder_;
  Under under_path_ = Under::kNothing;
  bool is_old_lost_ = false;
  TrashedEntry trashed_;
};

// Renames onto an existing file that goes to the trash, or stays if the rename fails.
Result ReplaceThroughTrash(const std::string& from, const std::string& to, TrashedEntry* trashed);

inline Result AppearedMeanwhile(const std::string& path) {
  return Failure(Code::kExists, path, "something of that name has appeared meanwhile");
}

}  // namespace quendle::platform
