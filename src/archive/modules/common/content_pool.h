// Unpacking contents that do not need each other on several threads, ahead of who takes them one by one.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <thread>
#include <vector>

#include "archive/modules/common/entry_reader.h"

namespace quendle::modules {

class ContentPool {
 public:
  struct Job {
    std::size_t entry = 0;
    // Of its content, with what unpacking it takes beside; believed only so far as memory is concerned.
    std::size_t size = 0;
    bool is_with_last = false;  // begun by one worker together with the job in front
  };

  // Used by one thread.
  class Worker {
   public:
    virtual ~Worker() = default;

    // Unpack is called next for each of these, in their order: for who does better with several at once. Ends soon.
    virtual void Begin(std::span<const Job> /*jobs*/) {}

    // The whole content of that entry, whose checksum held. Nothing: whoever waits for it has to find out why.
    // Ends soon.
    virtual std::optional<ContentBuffer> Unpack(std::size_t entry) = 0;
  };

  // The largest content that is unpacked this way, and what all that wait to be taken may have together.
  static constexpr std::size_t kMostSize = 64U << 20;

  // Begins with the jobs in their order. `make_worker` is called on this thread, until it gives none or there is one for
  // each core; without any nothing is unpacked.
  ContentPool(std::vector<Job> jobs, const std::function<std::unique_ptr<Worker>()>& make_worker);
  ~ContentPool();  // ends as soon as the workers have done what they are at
  ContentPool(const ContentPool&) = delete;
  ContentPool& operator=(const ContentPool&) = delete;

  // The content of that entry, for which it waits, when it is that of the next job. To be asked for each entry in their
  // order.
  std::optional<ContentBuffer> Take(std::size_t entry);

 private:
  struct Result {
    bool is_there = false;
    bool is_whole = false;
    ContentBuffer content;
  };

  struct Batch {
    std::size_t begin = 0;  // of the jobs
    std::size_t end = 0;
    std::size_t bytes = 0;  // of memory
  };

  void Work(Worker* worker);
  void Unpack(const Batch& batch, Worker* worker, std::vector<Result>* results) const;
  std::optional<Batch> Claim();
  Batch NextBatch() const;

  const std::vector<Job> jobs_;
  std::mutex mutex_;
  std::condition_variable has_room_;
  std::condition_variable has_result_;
  std::deque<Result> results_;  // of the jobs from taken_ on that were claimed
  std::size_t taken_ = 0;
  std::size_t claimed_ = 0;
  Batch next_;                     // to be claimed
  std::size_t waiting_bytes_ = 0;  // of the jobs from taken_ to claimed_
  bool stop_ = false;
  std::vector<std::unique_ptr<Worker>> workers_;
  std::vector<std::thread> threads_;
};

}  // namespace quendle::modules
