// Reading an archive on a thread of its own, so that unpacking and writing go on at the same time.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "archive/modules/common/entry_reader.h"

namespace quendle::modules {

// Gives what the engine's reader unpacks. Only the reader is used on the other thread; whoever is asked for
// anything is asked on the thread that calls NextEntry and ReadContent.
class ReadAhead final : public EntryReader, private EntrySink {
 public:
  struct Hooks {
    // As EntrySink::Wants, on the other thread. Content that nobody wants is not unpacked.
    std::function<bool(const Entry&)> is_wanted;
    // Called at least ten times a second while there is nothing to give yet. False ends the reading: the
    // answer is kFailed then.
    std::function<bool()> may_wait;
  };

  // Null, with the reason, when the engine cannot open the archive.
  static std::unique_ptr<ReadAhead> Open(const Engine& engine, const ArchiveInput& input,
                                         const ReaderOptions& options, Hooks hooks, Reason* reason);
  ~ReadAhead() override;
  ReadAhead(const ReadAhead&) = delete;
  ReadAhead& operator=(const ReadAhead&) = delete;

  ReadStatus NextEntry(Entry* entry) override;
  ReadStatus ReadContent(std::string_view* piece) override;
  // The content of the current file, of which nothing was read yet, if it is at hand, whole and right. Otherwise nothing
  // happens, and it is to be read.
  bool TakeWhole(ContentBuffer* content);
  const Reason& Problem() const override { return item_.reason; }

 private:
  // A part of the archive: the beginning of an entry or more of its content, and how either ends.
  struct Item {
    std::optional<ReadStatus> header;  // of NextEntry, when an entry, or the end, comes
    Entry entry;
    std::string content;
    ContentBuffer whole;            // in its place
    std::optional<ReadStatus> end;  // of ReadContent, when the content ends here
    Reason reason;
  };

  ReadAhead(std::function<std::optional<std::string>()> password, Hooks hooks)
      : ask_password_(std::move(password)), hooks_(std::move(hooks)) {}

  // On the other thread, or on one that the reader makes while that waits for it:
  void UnpackArchive();
  bool Wants(const Entry& entry) override;
  bool Begin(Entry entry, bool is_wanted) override;
  Wish Content(std::string_view piece) override;
  Wish Whole(ContentBuffer content) override;
  bool End(ReadStatus status, const Reason& problem) override;
  bool GoesOn() override;
  bool Give(Item item);
  std::optional<std::string> RequestPassword();

  // On the thread that uses the object:
  bool Take();
  bool AwaitItems();
  void AnswerPassword(std::unique_lock<std::mutex>* lock);

  const std::function<std::optional<std::string>()> ask_password_;
  const Hooks hooks_;
  const std::thread::id user_thread_ = std::this_thread::get_id();
  std::unique_ptr<ArchiveReader> reader_;
  Item begun_;  // what is not given yet of the entry that is unpacked
  std::uint64_t begun_entries_ = 0;

  std::mutex mutex_;  // over what stands up to the thread
  std::condition_variable changed_;
  std::vector<Item> given_;
  std::size_t given_bytes_ = 0;
  bool stop_ = false;
  std::uint64_t unwanted_before_ = 0;  // content of entries before this one is not asked for any more
  bool password_requested_ = false;
  std::optional<std::optional<std::string>> password_;
  std::thread thread_;

  std::vector<Item> taken_;
  std::size_t next_ = 0;  // of taken_
  std::uint64_t entries_ = 0;
  Item item_;  // at hand
  bool content_given_ = true;
  bool any_given_ = false;  // of this entry
};

}  // namespace quendle::modules
