// A new entry under a hidden temporary name beside the place where it is meant to go.
#pragma once

#include <string>

#include "platform/entries/open_folder.h"
#include "platform/entries/system_handle.h"
#include "platform/moving/source_tree.h"
#include "platform/moving/transfer.h"
#include "platform/moving/trash.h"
#include "reasons/result.h"

namespace quendle::platform {

// What is under the temporary name is removed when the object goes: a half-made copy, or what a complete one
// replaced.
class StagedEntry {
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
  // goes to the trash or is kept aside until this object goes; otherwise the name must be free. What is to be
  // taken back perhaps is remembered with all it holds.
  Result Put(const EntryStatus* replaced, bool to_trash, bool perhaps_taken_back);

  // Makes Put undone: the new entry is gone, and what it replaced is back. Removes nothing but what was put,
  // as it was put: when anything about it has changed, it stays. The reason of a failure says what is where.
  Result TakeBack();

 private:
  enum class Under { kNothing, kNewEntry, kReplacedFile };

  // What is recorded of what was made here is read and removed without a question.
  class Nobody final : public FileOperationObserver {
    bool MustStayResponsive() const override { return false; }
    bool OnProgress(const FileProgress&) override { return true; }
    Answer OnOverwrite(const FileSide&, const FileSide&) override { return Answer::kNo; }
  };

  void Clear();
  Result Made(Result result);
  Result Record(bool with_all_it_holds);
  Result Rename(const EntryStatus* replaced, bool to_trash);
  Result Swap(const EntryStatus& replaced);
  Result CheckPlaced();
  bool IsPlaced(const std::string& path) const;
  Result Withdraw();
  void KeepUnderPath(Result* result);
  Result RemoveTaken();

  const std::string destination_;
  const std::string path_;
  const std::string name_;
  OpenFolder folder_;
  Under under_path_ = Under::kNothing;
  bool is_old_lost_ = false;
  TrashedEntry trashed_;
  EntryStatus placed_;
  SourceTree placed_tree_;  // of a folder
  EntryId replaced_;
  Nobody nobody_;
  const FileOperationOptions options_;
  Transfer alone_{false, options_, &nobody_};
};

// Renames onto an existing file that goes to the trash, or stays if the rename fails.
Result ReplaceThroughTrash(const std::string& from, const std::string& to, TrashedEntry* trashed);

}  // namespace quendle::platform
