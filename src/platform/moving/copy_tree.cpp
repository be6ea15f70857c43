#include "platform/moving/copy_tree.h"
#include "platform/process/system_failure.h"

#include <algorithm>
#include <atomic>
#include <map>
#include <mutex>
#include <unordered_map>
#include <vector>

#include "platform/moving/copy_file.h"
#include "platform/moving/own_thread.h"
#include "platform/process/cores.h"

namespace quendle::platform {
namespace {

constexpr std::size_t kEntriesAtOnce = 64;      // of a folder, for one thread
constexpr std::size_t kFewestForThreads = 200;  // entries; fewer are copied before threads have begun
constexpr unsigned kMostThreads = 4;            // more would only wait for each other in the file system
constexpr std::uint64_t kLargeFile = 1ULL << 20;

// What several threads have copied together, and what each reports of it.
class Share final : public FileOperationObserver {
 public:
  Share(std::atomic<std::uint64_t>& all, FileOperationObserver* observer) : all_(all), observer_(observer) {}

  bool MustStayResponsive() const override { return false; }
  // Nothing is there.
  Answer OnOverwrite(const FileSide&, const FileSide&) override { return Answer::kCancel; }
  bool OnProgress(const FileProgress& progress) override {
    const std::uint64_t more = progress.bytes_done - mine_;
    mine_ = progress.bytes_done;
    return observer_->OnProgress({progress.path, all_ += more, 0});
  }

 private:
  std::atomic<std::uint64_t>& all_;
  FileOperationObserver* const observer_;
  std::uint64_t mine_ = 0;
};

// Counts that for the operation.
class Total final : public FileOperationObserver {
 public:
  explicit Total(ProgressMeter& meter) : meter_(meter) {}

  bool MustStayResponsive() const override { return false; }
  Answer OnOverwrite(const FileSide&, const FileSide&) override { return Answer::kCancel; }
  bool OnProgress(const FileProgress& progress) override {
    if (progress.path.empty()) return meter_.Tick();  // nothing has begun yet
    return meter_.StartEntry(progress.path) && Reach(progress.bytes_done);
  }

  // Reports of several threads may come in another order than they were made.
  bool Reach(std::uint64_t bytes) {
    const std::uint64_t more = bytes - std::min(bytes, counted_);
    counted_ += more;
    return meter_.AddBytes(more);
  }

 private:
  ProgressMeter& meter_;
  std::uint64_t counted_ = 0;
};

class TreeCopy {
 public:
  TreeCopy(Transfer& transfer, const SourceTree& tree, const std::string& staging,
           const std::string& destination)
      : transfer_(transfer), tree_(tree), staging_(staging), destination_(destination) {}

  Result Run() {
    Result result;
    const std::size_t count = tree_.entries().size();
    for (std::size_t i = 0; result.ok() && i < count; ++i) {
      if (tree_.entries()[i].status.is_folder()) result = MakeFolders(i);
    }
    if (result.ok()) result = CopyParts();
    for (auto name = other_names_.begin(); result.ok() && name != other_names_.end(); ++name)
      result = CopyOtherName(name->first, name->second);
    // Only now that nothing is added any more; deepest first, while the folders above can still be entered.
    for (std::size_t i = count; result.ok() && i-- > 0;) {
      if (tree_.entries()[i].status.is_folder()) result = FinishFolder(i);
    }
    return result;
  }

 private:
  struct FolderPair {
    OpenFolder from;
    OpenFolder to;
  };
  struct Part {
    std::size_t folder;
    std::size_t begin;  // of its children
    std::size_t end;
  };

  Result OpenPair(std::size_t index, FolderPair* pair) {
    Result result = tree_.Enter(index, &pair->from);
    if (!result.ok()) return result;
    return OpenFolder::OpenItself(tree_.PathBelow(staging_, index), tree_.PathBelow(destination_, index),
                                  OpenFolder::Use::kList, &pair->to);
  }

  // Those in the folder, which is there; what else it holds is planned to be copied.
  Result MakeFolders(std::size_t index) {
    const TreeEntry& folder = tree_.entries()[index];
    FolderPair pair;
    bool is_open = false;
    Result result;
    for (std::size_t i = folder.children_begin; result.ok() && i < folder.children_end; ++i) {
      const TreeEntry& entry = tree_.entries()[i];
      if ((i - folder.children_begin) % kEntriesAtOnce == 0)
        parts_.push_back({index, i, std::min(i + kEntriesAtOnce, folder.children_end)});
      if (!entry.status.is_folder()) {
        PlanToCopy(i);
        continue;
      }
      if (!transfer_.meter.StartEntry(tree_.Path(i))) return Cancelled(tree_.Path(i));
      if (!is_open) result = OpenPair(index, &pair);
      is_open = true;
      if (result.ok()) result = pair.to.MakeFolder(entry.name, {.is_private = true});
    }
    return result;
  }

  void PlanToCopy(std::size_t index) {
    const EntryStatus& status = tree_.entries()[index].status;
    if (status.links > 1) {
      const auto [first, is_new] = first_names_.try_emplace(status.id, index);
      if (!is_new) {
        other_names_[index] = first->second;
        return;
      }
    }
    if (status.is_file()) bytes_ += status.size;
  }

  // Several threads make up for the time that each waits for file systems and locks.
  Result CopyParts() {
    first_failed_ = parts_.size();
    const unsigned threads = std::min(UsableCores(), kMostThreads);
    if (threads < 2 || tree_.entries().size() < kFewestForThreads) {
      CopyUntilDone(transfer_);
      return failure_;
    }
    std::atomic<std::uint64_t> all = 0;
    Total total(transfer_.meter);
    DoOnThreads(threads, &total, [&](FileOperationObserver* observer) {
      Share share(all, observer);
      Transfer own(transfer_.moving, transfer_.options, &share);
      CopyUntilDone(own);
    });
    if (failure_.ok() && !total.Reach(bytes_)) return Cancelled(tree_.Path(0));
    return failure_;
  }

  // Every part before one that fails has been begun by then, and goes on: the first failure is the same as if
  // they were copied one after the other.
  void CopyUntilDone(Transfer& own) {
    try {
      for (std::size_t part = next_part_++; part < first_failed_; part = next_part_++) {
        Result result = CopyPart(own, parts_[part]);
        if (!result.ok()) StopAt(part, std::move(result));
      }
    } catch (...) {
      StopAt(0, {});  // what the others would copy is of no use any more
      throw;
    }
  }

  void StopAt(std::size_t part, Result result) {
    const std::lock_guard lock(mutex_);
    if (part >= first_failed_) return;
    first_failed_ = part;
    failure_ = std::move(result);
  }

  Result CopyPart(Transfer& own, const Part& part) {
    FolderPair pair;
    Result result = OpenPair(part.folder, &pair);
    for (std::size_t i = part.begin; result.ok() && i < part.end; ++i) {
      const TreeEntry& entry = tree_.entries()[i];
      if (!entry.status.is_folder() && other_names_.count(i) == 0) result = CopyChild(own, entry, pair);
    }
    return result;
  }

  Result CopyChild(Transfer& own, const TreeEntry& entry, const FolderPair& pair) {
    const std::string from = pair.from.Shown(entry.name);
    const std::string to = pair.to.Shown(entry.name);
    if (!own.meter.StartEntry(from)) return Cancelled(from);
    if (entry.status.is_link()) return CopyLink(entry, pair, to);
    std::unique_lock lock(large_files_, std::defer_lock);
    if (entry.status.size >= kLargeFile) {
      lock.lock();
      if (!own.meter.Tick()) return Cancelled(from);
    }
    return CopyFile(own, entry, pair, from, to);
  }

  // Of a file that has been copied. Where the file system has no hard links it is copied again.
  Result CopyOtherName(std::size_t index, std::size_t first) {
    const TreeEntry& entry = tree_.entries()[index];
    FolderPair pair;
    Result result = OpenPair(entry.folder, &pair);
    if (!result.ok()) return result;
    if (!pair.to.MakeHardLink(tree_.PathBelow(staging_, first), entry.name).ok())
      return CopyChild(transfer_, entry, pair);
    return transfer_.meter.AddBytes(entry.status.size) ? Success() : Cancelled(tree_.Path(index));
  }

  Result CopyLink(const TreeEntry& entry, const FolderPair& pair, const std::string& to) {
    std::string content;
    Result result = pair.from.ReadLink(entry.name, entry.status, &content);
    if (result.ok()) result = pair.to.MakeLinkLike(entry.name, content, entry.status);
    return result.ok() ? CopyLinkMetadata(transfer_, entry.status, pair.to, entry.name, to) : result;
  }

  Result CopyFile(Transfer& own, const TreeEntry& entry, const FolderPair& pair, const std::string& from,
                  const std::string& to) {
    SystemHandle in;
    SystemHandle out;
    Result result = pair.from.OpenFile(entry.name, &in);
    if (result.ok()) result = pair.to.MakeFile(entry.name, {.is_private = true}, &out);
    if (result.ok()) result = CopyFileContent(own, {in.get(), from}, entry.status, {out.get(), to}, false);
    if (result.ok() && !out.Close()) return LastSystemFailure(to);
    return result;
  }

  Result FinishFolder(std::size_t index) {
    FolderPair pair;
    Result result = OpenPair(index, &pair);
    if (!result.ok()) return result;
    const std::string from = tree_.Path(index);
    const std::string to = tree_.PathBelow(destination_, index);
    return CopyMetadata(transfer_, {pair.from.get(), from}, tree_.entries()[index].status,
                        {pair.to.get(), to});
  }

  Transfer& transfer_;
  const SourceTree& tree_;
  const std::string& staging_;
  const std::string& destination_;

  std::vector<Part> parts_;
  std::uint64_t bytes_ = 0;                                            // that they have to copy
  std::unordered_map<EntryId, std::size_t, EntryIdHash> first_names_;  // of files with several
  std::map<std::size_t, std::size_t> other_names_;                     // and the first one of each

  std::atomic<std::size_t> next_part_ = 0;
  std::atomic<std::size_t> first_failed_ = 0;
  Result failure_;  // of that part
  std::mutex mutex_;
  std::mutex large_files_;  // one after the other: to jump between them costs a disk more than threads gain
};

}  // namespace

Result CopyTree(Transfer& transfer, const SourceTree& tree, const std::string& staging,
                const std::string& destination) {
  // Opened before the mode is copied, which may not let anyone in.
  OpenFolder top;
  Result result = OpenFolder::OpenItself(staging, destination, OpenFolder::Use::kList, &top);
  if (result.ok()) result = TreeCopy(transfer, tree, staging, destination).Run();
  return result.ok() && transfer.moving ? SyncCopies({top.get(), destination}) : result;
}

}  // namespace quendle::platform
