#include "archive/modules/common/content_pool.h"

#include <algorithm>
#include <exception>
#include <new>
#include <utility>

#include "platform/process/cores.h"

namespace quendle::modules {
namespace {

constexpr unsigned kMostWorkers = 8;
// What a worker takes at once, so that threads meet seldom over small contents.
constexpr std::size_t kBatchBytes = 256U << 10;
constexpr std::size_t kBatchJobs = 64;
constexpr std::size_t kOverhead = 200;  // of memory for each, about

}  // namespace

ContentPool::ContentPool(std::vector<Job> jobs, const std::function<std::unique_ptr<Worker>()>& make_worker)
    : jobs_(std::move(jobs)) {
  const std::size_t cores = std::min(platform::UsableCores(), kMostWorkers);
  while (workers_.size() < std::min(cores, jobs_.size())) {
    std::unique_ptr<Worker> worker = make_worker();
    if (!worker) break;
    workers_.push_back(std::move(worker));
  }
  next_ = NextBatch();
  threads_.reserve(workers_.size());
  try {
    for (const auto& worker : workers_) threads_.emplace_back([this, &worker] { Work(worker.get()); });
  } catch (const std::exception&) {
    // The system has no more threads: those that there are do it, or whoever takes.
  }
}

ContentPool::~ContentPool() {
  {
    const std::lock_guard lock(mutex_);
    stop_ = true;
  }
  has_room_.notify_all();
  for (std::thread& thread : threads_) thread.join();
}

void ContentPool::Work(Worker* worker) {
  while (const std::optional<Batch> batch = Claim()) {
    std::vector<Result> results(batch->end - batch->begin);
    Unpack(*batch, worker, &results);
    const std::lock_guard lock(mutex_);
    if (stop_) return;
    std::move(results.begin(), results.end(),
              results_.begin() + static_cast<std::ptrdiff_t>(batch->begin - taken_));
    // Nobody waits for a later one.
    if (batch->begin == taken_) has_result_.notify_one();
  }
}

void ContentPool::Unpack(const Batch& batch, Worker* worker, std::vector<Result>* results) const {
  const std::span jobs(jobs_.data() + batch.begin, results->size());
  try {
    worker->Begin(jobs);
  } catch (const std::bad_alloc&) {
    // Unpack gives nothing then.
  }
  for (std::size_t i = 0; i < jobs.size(); ++i) {
    Result& result = (*results)[i];
    result.is_there = true;
    try {
      std::optional<ContentBuffer> content = worker->Unpack(jobs[i].entry);
      result.is_whole = content.has_value();
      if (content) result.content = *std::move(content);
    } catch (const std::bad_alloc&) {
      result.is_whole = false;
    }
  }
}

// Waits for room. Nothing when there are no more jobs, or no more are wanted.
std::optional<ContentPool::Batch> ContentPool::Claim() {
  std::unique_lock lock(mutex_);
  const auto has_room = [this] { return waiting_bytes_ == 0 || waiting_bytes_ + next_.bytes <= kMostSize; };
  has_room_.wait(lock, [&] { return stop_ || claimed_ == jobs_.size() || has_room(); });
  if (stop_ || claimed_ == jobs_.size()) return std::nullopt;
  const Batch batch = next_;
  waiting_bytes_ += batch.bytes;
  claimed_ = batch.end;
  next_ = NextBatch();
  results_.resize(claimed_ - taken_);
  return batch;
}

ContentPool::Batch ContentPool::NextBatch() const {
  Batch batch{claimed_, claimed_, 0};
  const auto goes_on = [&] {
    const bool is_full = batch.bytes >= kBatchBytes || batch.end - batch.begin >= kBatchJobs;
    return batch.end < jobs_.size() && (!is_full || jobs_[batch.end].is_with_last);
  };
  while (goes_on()) batch.bytes += jobs_[batch.end++].size + kOverhead;
  return batch;
}

std::optional<ContentBuffer> ContentPool::Take(std::size_t entry) {
  // Only this thread changes it.
  if (threads_.empty() || taken_ == jobs_.size() || jobs_[taken_].entry != entry) return std::nullopt;
  std::unique_lock lock(mutex_);
  has_result_.wait(lock, [this] { return !results_.empty() && results_.front().is_there; });
  Result result = std::move(results_.front());
  results_.pop_front();
  waiting_bytes_ -= jobs_[taken_++].size + kOverhead;
  lock.unlock();
  has_room_.notify_one();
  return result.is_whole ? std::optional(std::move(result.content)) : std::nullopt;
}

}  // namespace quendle::modules
