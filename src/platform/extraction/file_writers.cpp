#include "platform/extraction/file_writers.h"

#include <algorithm>
#include <exception>
#include <new>
#include <utility>

#include "platform/entries/path_names.h"
#include "platform/process/cores.h"
#include "platform/text/unicode.h"

namespace quendle::platform {
namespace {

constexpr unsigned kMostWriters = 8;
// What a thread takes at once, so that threads meet seldom over small files.
constexpr std::size_t kBatchFiles = 64;
constexpr std::size_t kBatchBytes = 256U << 10;
// What may wait. Each folder is a file that the process has open.
constexpr std::size_t kMostFiles = 1024;
constexpr std::size_t kMostBytes = 16U << 20;
constexpr std::size_t kMostFolders = 64;
// In short names that Windows gives to files beside their own.
constexpr std::string_view kSpellings = kHostNames == NameRules::kWindows ? "~" : "";
// What is written between two looks at whether it is wanted still.
constexpr std::size_t kPieceBytes = 128U << 10;

template <typename Act>
void Guarded(const std::string& shown, Result* result, const Act& act) {
  try {
    act();
  } catch (const std::bad_alloc&) {
    *result = Failure(Code::kFailed, shown, why::kNotEnoughMemory);
  }
}

}  // namespace

FileWriters::FileWriters(Place place)
    : place_(std::move(place)),
      temporary_name_(TemporaryPath("")),
      most_threads_(std::min(UsableCores(), kMostWriters)) {}

void FileWriters::Start() {
  if (!threads_.empty()) return;
  threads_.reserve(most_threads_);
  try {
    while (threads_.size() < most_threads_) threads_.emplace_back([this] { Work(); });
  } catch (const std::exception&) {
    // The system has no more threads: those that there are do it.
    if (threads_.empty()) throw;
  }
}

FileWriters::~FileWriters() {
  End();
}

void FileWriters::End() {
  {
    const std::lock_guard lock(mutex_);
    stop_ = true;
  }
  has_files_.notify_all();
  placed_some_.notify_all();
  for (std::thread& thread : std::exchange(threads_, {})) thread.join();
  files_.erase(files_.begin() + static_cast<std::ptrdiff_t>(std::min(placed_, end_) - taken_), files_.end());
}

bool FileWriters::HasRoom(std::size_t size) const {
  const std::size_t waiting = waiting_bytes_;
  return files_.size() < kMostFiles && folders_ < kMostFolders &&
         (waiting == 0 || waiting + size <= kMostBytes);
}

bool FileWriters::MayMeet(const std::string& path) {
  if (keys_.empty()) return false;
  if (path.find_first_of(kSpellings) != std::string::npos) return true;
  const std::string key = FoldedName(path);
  if (keys_.contains(key)) return true;
  const std::size_t folder = std::min(key.rfind('/'), key.size());
  if (folder == key.size() || key.compare(0, folder, checked_folder_) == 0) return false;
  for (std::size_t end = key.find('/'); end != std::string::npos; end = key.find('/', end + 1)) {
    if (keys_.contains(key.substr(0, end))) return true;
  }
  checked_folder_ = key.substr(0, folder);
  return false;
}

void FileWriters::Hand(File file) {
  Job job;
  Start();
  job.key = &*keys_.insert(FoldedName(file.path)).first;
  if (checked_folder_.starts_with(*job.key)) checked_folder_.clear();
  if (files_.empty() || files_.back().file.folder != file.folder) ++folders_;
  waiting_bytes_ += file.content.View().size();
  job.file = std::move(file);
  std::size_t unclaimed = 0;
  {
    const std::lock_guard lock(mutex_);
    files_.push_back(std::move(job));
    unclaimed = taken_ + files_.size() - claimed_;
  }
  if (unclaimed % kBatchFiles == 0 || waiting_bytes_ >= kBatchBytes) has_files_.notify_one();
}

void FileWriters::Work() {
  for (Batch batch = Claim(); !batch.jobs.empty(); batch = Claim()) {
    for (std::size_t i = 0; i < batch.jobs.size() && !stop_; ++i) {
      Job& job = *batch.jobs[i];
      Guarded(job.file.shown, &job.result, [&] { Write(batch.first + i, &job); });
      if (!job.result.ok()) job.written.reset();
      waiting_bytes_ -= std::exchange(job.file.content, {}).View().size();
    }
    PlaceAll(batch);
  }
}

bool FileWriters::IsDue() const {
  const std::size_t unclaimed = taken_ + files_.size() - claimed_;
  return unclaimed >= kBatchFiles || (unclaimed > 0 && (is_awaited_ || waiting_bytes_ >= kBatchBytes));
}

// Waits for files. None when no more are wanted.
FileWriters::Batch FileWriters::Claim() {
  std::unique_lock lock(mutex_);
  has_files_.wait(lock, [this] { return stop_ || IsDue(); });
  Batch batch{claimed_, {}};
  if (stop_) return batch;
  std::size_t bytes = 0;
  for (; claimed_ < taken_ + files_.size() && batch.jobs.size() < kBatchFiles && bytes < kBatchBytes;
       ++claimed_) {
    batch.jobs.push_back(&files_[claimed_ - taken_]);
    bytes += batch.jobs.back()->file.content.View().size();
  }
  return batch;
}

void FileWriters::Write(std::size_t number, Job* job) const {
  // As many as may wait at the same time.
  const std::string name = NumberedPath(temporary_name_, static_cast<unsigned>(number % kMostFiles), false);
  job->result = UnfinishedFile::Make(job->file.folder, name, job->file.shown, &job->written);
  std::string_view left = job->file.content.View();
  if (job->result.ok()) job->result = job->written->SetAside(left.size());
  while (job->result.ok() && !left.empty() && !stop_) {
    const std::string_view piece = left.substr(0, kPieceBytes);
    job->result = job->written->Write(piece);
    left.remove_prefix(piece.size());
  }
  if (job->result.ok() && left.empty()) job->result = job->written->Complete(job->file.attributes);
}

// Waits until all before them have their names.
void FileWriters::PlaceAll(const Batch& batch) {
  std::unique_lock lock(mutex_);
  placed_some_.wait(lock, [&] { return stop_ || placed_ == batch.first; });
  std::size_t end = end_;
  lock.unlock();
  std::size_t number = batch.first;
  for (Job* const job : batch.jobs) {
    if (stop_) return;
    if (number < end && job->result.ok()) {
      Guarded(job->file.shown, &job->result, [&] { job->result = place_(job->file, job->written.get()); });
      job->id = job->written->id();
    }
    job->written.reset();
    ++number;
    if (number <= end && ConcernsAll(job->result.code)) end = number;
    lock.lock();
    placed_ = number;
    end_ = end;
    lock.unlock();
  }
  placed_some_.notify_all();
}

bool FileWriters::AnyPlaced() const {
  return taken_ < std::min(placed_, end_);
}

std::vector<FileWriters::Outcome> FileWriters::Take(std::chrono::milliseconds wait) {
  std::vector<Outcome> outcomes;
  std::unique_lock lock(mutex_);
  if (!AnyPlaced() && !files_.empty() && wait.count() > 0) {
    is_awaited_ = true;
    has_files_.notify_all();
    placed_some_.wait_for(lock, wait, [this] { return AnyPlaced(); });
    is_awaited_ = false;
  }
  while (AnyPlaced()) {
    Job job = std::move(files_.front());
    files_.pop_front();
    ++taken_;
    if (files_.empty() || files_.front().file.folder != job.file.folder) --folders_;
    keys_.erase(*job.key);
    outcomes.push_back({std::move(job.result), job.id});
  }
  return outcomes;
}

}  // namespace quendle::platform
