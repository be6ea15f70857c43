// Whole files that are written on several threads, and get their names in the order in which they were handed over.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <limits>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <unordered_set>
#include <vector>

#include "platform/extraction/content_buffer.h"
#include "platform/extraction/unfinished_file.h"
#include "platform/process/undone_at_exit.h"

namespace quendle::platform {

// Used on one thread. After a failure that concerns all no more files get their names, as if they had never been
// handed over. What has no name at the end, or at an exit of the process, is removed.
class FileWriters final : private UndoneAtExit {
 public:
  struct File {
    FolderHandle folder;
    std::string path;   // below the top
    std::string shown;  // the same, as failures name it
    ContentBuffer content;
    EntryAttributes attributes;
  };
  // Gives a file that is written its name, the file that was handed over first before all others. On any thread, but
  // on one at a time.
  using Place = std::function<Result(const File& file, UnfinishedFile* written)>;

  struct Outcome {
    Result result;
    EntryId id;  // if it has its name
  };

  explicit FileWriters(Place place);
  ~FileWriters();
  FileWriters(const FileWriters&) = delete;
  FileWriters& operator=(const FileWriters&) = delete;

  // False where there is one core only: nothing would be gained. Nothing is to be handed over then.
  bool AreUseful() const { return most_threads_ > 1; }

  // False when so much waits to be written that no more should be handed over.
  bool HasRoom(std::size_t size) const;
  // MayMeet is false of its path, and HasRoom true of its size.
  void Hand(File file);

  // How files ended, in the order in which they were handed over, none twice. Waits for the first of them, not longer
  // than `wait`, when there is none yet.
  std::vector<Outcome> Take(std::chrono::milliseconds wait);

  std::size_t Count() const { return files_.size(); }  // those whose outcome was not taken
  // Could one of those, once it is there, be `path` or a folder on its way? Says yes rather once too often: which
  // names are one is up to the file system.
  bool MayMeet(const std::string& path);

  // No more get their names. What has one can be taken; the others are forgotten.
  void Discard() { End(); }

 private:
  struct Job {
    File file;
    const std::string* key = nullptr;  // in keys_
    std::unique_ptr<UnfinishedFile> written;
    Result result;
    EntryId id;
  };
  struct Batch {
    std::size_t first = 0;  // the number of the first
    std::vector<Job*> jobs;
  };

  void Start();
  void End();
  void UndoAtExit() override { End(); }
  void Work();
  Batch Claim();
  void Write(std::size_t number, Job* job) const;
  void PlaceAll(const Batch& batch);
  bool IsDue() const;
  bool AnyPlaced() const;

  const Place place_;
  const std::string temporary_name_;
  const unsigned most_threads_;
  std::unordered_set<std::string> keys_;  // of the files that wait: their paths, folded
  std::string checked_folder_;            // neither it nor a folder on its way is among them
  std::size_t folders_ = 0;               // stretches of files_ that are in one folder

  std::mutex mutex_;  // over what stands up to the threads
  std::condition_variable has_files_;
  std::condition_variable placed_some_;
  std::deque<Job> files_;
  // Numbers of files, counted from the first one that was handed over.
  std::size_t taken_ = 0;  // of the first in files_
  std::size_t claimed_ = 0;
  std::size_t placed_ = 0;
  std::size_t end_ = std::numeric_limits<std::size_t>::max();  // behind a failure that concerned all
  bool is_awaited_ = false;
  std::atomic<std::size_t> waiting_bytes_ = 0;
  std::atomic<bool> stop_ = false;
  std::vector<std::thread> threads_;
};

}  // namespace quendle::platform
