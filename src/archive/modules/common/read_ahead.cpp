#include "archive/modules/common/read_ahead.h"

#include <chrono>
#include <exception>
#include <utility>

#include "archive/modules/common/entry_names.h"

namespace quendle::modules {
namespace {

constexpr std::size_t kItemBytes = 64U << 10;
constexpr std::size_t kMostBytes = 1U << 20;  // that wait to be taken
constexpr std::size_t kItemOverhead = 1000;   // of memory, about
constexpr std::chrono::milliseconds kBetweenCalls{20};

}  // namespace

std::unique_ptr<ReadAhead> ReadAhead::Open(const Engine& engine, const ArchiveInput& input,
                                           const ReaderOptions& options, Hooks hooks, Reason* reason) {
  std::unique_ptr<ReadAhead> ahead(new ReadAhead(options.password, std::move(hooks)));
  ahead->reader_ = engine.open(
      input, ReaderOptions{options.charset, [self = ahead.get()] { return self->RequestPassword(); }},
      reason);
  if (!ahead->reader_) return nullptr;
  ahead->thread_ = std::thread([self = ahead.get()] { self->UnpackArchive(); });
  return ahead;
}

ReadAhead::~ReadAhead() {
  if (!thread_.joinable()) return;
  {
    const std::lock_guard lock(mutex_);
    stop_ = true;
  }
  changed_.notify_all();
  thread_.join();
}

void ReadAhead::UnpackArchive() {
  const InterruptibleReads reads([this] { return GoesOn(); });
  Item last;
  try {
    last.header = last.end = reader_->Unpack(this);
    if (last.header != ReadStatus::kEnd) last.reason = reader_->Problem();
  } catch (const std::exception& fault) {
    last.header = last.end = ReadStatus::kFailed;
    last.reason = Reason(fault.what());
  }
  Give(std::move(last));
}

bool ReadAhead::Wants(const Entry& entry) {
  std::string path = WithoutCurrentFolder(entry.path);
  if (path == entry.path) return hooks_.is_wanted(entry);
  Entry named = entry;
  named.path = std::move(path);
  return hooks_.is_wanted(named);
}

bool ReadAhead::Begin(Entry entry, bool is_wanted) {
  ++begun_entries_;
  begun_ = {};
  begun_.header = ReadStatus::kOk;
  begun_.entry = std::move(entry);
  begun_.entry.path = WithoutCurrentFolder(std::move(begun_.entry.path));
  return is_wanted || End(ReadStatus::kEnd, {});
}

EntrySink::Wish ReadAhead::Content(std::string_view piece) {
  begun_.content.append(piece);
  if (begun_.content.size() < kItemBytes) return Wish::kMore;
  if (!Give(std::exchange(begun_, {}))) return Wish::kStop;
  const std::lock_guard lock(mutex_);
  return begun_entries_ < unwanted_before_ ? Wish::kSkip : Wish::kMore;
}

EntrySink::Wish ReadAhead::Whole(ContentBuffer content) {
  begun_.whole = std::move(content);
  return Wish::kMore;
}

bool ReadAhead::End(ReadStatus status, const Reason& problem) {
  begun_.end = status;
  begun_.reason = problem;
  return Give(std::exchange(begun_, {}));
}

bool ReadAhead::GoesOn() {
  const std::lock_guard lock(mutex_);
  return !stop_;
}

// Waits for room. False when nobody wants any more.
bool ReadAhead::Give(Item item) {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return stop_ || given_bytes_ < kMostBytes; });
  if (stop_) return false;
  given_bytes_ += item.content.size() + item.whole.View().size() + kItemOverhead;
  given_.push_back(std::move(item));
  if (given_.size() == 1) changed_.notify_all();
  return true;
}

std::optional<std::string> ReadAhead::RequestPassword() {
  if (std::this_thread::get_id() == user_thread_) return ask_password_();
  std::unique_lock lock(mutex_);
  password_requested_ = true;
  changed_.notify_all();
  changed_.wait(lock, [this] { return stop_ || password_.has_value(); });
  if (stop_) return std::nullopt;
  return *std::exchange(password_, std::nullopt);
}

bool ReadAhead::Take() {
  if (next_ == taken_.size() && !AwaitItems()) {
    item_ = {};
    item_.header = item_.end = ReadStatus::kFailed;
    item_.reason = why::kStopped;
    return false;
  }
  item_ = std::move(taken_[next_++]);
  content_given_ = item_.content.empty() && item_.whole.View().empty();
  return true;
}

// All at once, so that the threads meet seldom.
bool ReadAhead::AwaitItems() {
  taken_.clear();
  next_ = 0;
  std::unique_lock lock(mutex_);
  while (given_.empty()) {
    if (password_requested_) {
      AnswerPassword(&lock);
    } else if (changed_.wait_for(lock, kBetweenCalls) == std::cv_status::timeout) {
      lock.unlock();
      const bool goes_on = hooks_.may_wait();
      lock.lock();
      if (!goes_on) return false;
    }
  }
  taken_.swap(given_);
  given_bytes_ = 0;
  changed_.notify_all();
  return true;
}

void ReadAhead::AnswerPassword(std::unique_lock<std::mutex>* lock) {
  password_requested_ = false;
  lock->unlock();
  std::optional<std::string> password = ask_password_();
  lock->lock();
  password_ = std::move(password);
  changed_.notify_all();
}

ReadStatus ReadAhead::NextEntry(Entry* entry) {
  if (item_.header && item_.header != ReadStatus::kOk) return *item_.header;
  ++entries_;
  if (!item_.end) {
    const std::lock_guard lock(mutex_);
    unwanted_before_ = entries_;
  }
  do {
    if (!Take()) return ReadStatus::kFailed;
  } while (!item_.header);
  *entry = std::move(item_.entry);
  any_given_ = false;
  return *item_.header;
}

ReadStatus ReadAhead::ReadContent(std::string_view* piece) {
  while (content_given_ && !item_.end) {
    if (!Take()) break;
  }
  if (content_given_) return *item_.end;
  content_given_ = any_given_ = true;
  *piece = item_.content.empty() ? item_.whole.View() : item_.content;
  return ReadStatus::kOk;
}

bool ReadAhead::TakeWhole(ContentBuffer* content) {
  if (any_given_ || item_.end != ReadStatus::kEnd) return false;
  content_given_ = any_given_ = true;
  *content = item_.content.empty() ? std::move(item_.whole) : ContentBuffer::CopyOf(item_.content);
  return true;
}

}  // namespace quendle::modules
