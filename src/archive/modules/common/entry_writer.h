// Entries on their way to the disk: their names are checked, conflicts with what is there are settled, they are written
// and recorded.
#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "archive/modules/common/entry_log.h"
#include "archive/modules/common/entry_reader.h"
#include "archive/modules/common/extraction.h"
#include "archive/modules/common/session.h"
#include "platform/extraction/extraction_folder.h"

namespace quendle::modules {

class EntryWriter {
 public:
  // Opens the lowest folder that the folders of all calls lie in. What is known of the archive's origin will
  // be known of its files. What the archive is read from and `protected_paths` stays as it is. `log` hears of all that
  // is done.
  static platform::Result Open(const ArchiveInput& archive, const std::vector<std::string>& protected_paths,
                               const std::vector<Call>& calls, EntryLog* log,
                               std::unique_ptr<EntryWriter>* writer);

  platform::Result CheckSpace(std::uint64_t bytes) const { return folder_->CheckSpace(bytes); }

  // Finds out where the entry goes and whether it may. Folders and links are made, or noted, at once.
  enum class Decision {
    kWriteFile,  // HandOver is to follow, or Begin, Write ..., Commit or Discard
    kWait,       // for the files that are handed over; the same is to be asked again when none is
    kDone,       // made or left alone; the log says which
    kRefused,    // `*why` says why
    kCancel,
  };
  Decision Prepare(Call* call, const Entry& entry, const Session& session, Reason* why);

  platform::Result Begin(const Entry& entry) { return folder_->BeginFile(path_, entry.size); }
  platform::Result Write(std::string_view piece) { return folder_->Write(piece); }
  platform::Result Commit(Call* call, const Entry& entry);
  void Discard() { folder_->DiscardFile(); }

  // Has a whole file, of a name that nothing had, written while other entries go on.
  bool MayHandOver() const { return replace_ == Replace::kNothing && folder_->WritesBehind(); }
  bool HasRoom(std::size_t size) const { return folder_->HasRoom(size); }
  platform::Result HandOver(Call* call, const Entry& entry, ContentBuffer content);
  // Files that were handed over, up to the first that is not there yet, or whose failure concerns every entry. That
  // is the answer then.
  platform::Result Settle(std::chrono::milliseconds wait);
  bool IsSettled() const { return folder_->Handed() == 0; }
  void DiscardHanded() { folder_->DiscardHanded(); }

  // Makes what was noted.
  void Finish();

 private:
  using Replace = platform::ExtractionFolder::Replace;

  EntryWriter(std::string base, std::unique_ptr<platform::ExtractionFolder> folder, EntryLog* log)
      : base_(std::move(base)), folder_(std::move(folder)), log_(*log) {}

  platform::Result FindPath(const Call& call, const Entry& entry);
  Decision SettleConflict(Call* call, const Entry& entry, const Session& session, Reason* why);
  Decision AskToReplace(Call* call, const Entry& entry, const platform::FileSide& existing,
                        const Session& session);
  Decision Decide(const platform::Result& result, Call* call, const Entry& entry, Reason* why);
  std::string LineOf(const char* what, const Entry& entry) const;

  std::string base_;  // with a separator at its end
  std::unique_ptr<platform::ExtractionFolder> folder_;
  EntryLog& log_;
  // Of the entry in work:
  std::string path_;  // below base_
  std::string note_;  // for its line in the log
  Replace replace_ = Replace::kNothing;
  // Noted links by their paths, with the calls and entries that they are of.
  std::unordered_map<std::string, std::pair<Call*, std::string>> links_;
};

}  // namespace quendle::modules
