#include "archive/modules/common/extraction.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <memory>
#include <optional>
#include <unordered_map>
#include <utility>

#include "archive/modules/common/entry_matcher.h"
#include "archive/modules/common/entry_writer.h"
#include "archive/modules/common/read_ahead.h"
#include "archive/modules/common/response_file.h"

namespace quendle::modules {
namespace {

// An entry that a call asked for.
struct Wanted {
  Call* call = nullptr;         // null: nobody did, or it is settled
  Reason reason;                // why the engines so far could not read it
  bool is_unsupported = false;  // ... which is that none knows how it is packed
  bool lacks_password = false;  // the password at hand does not open it
  bool is_due = true;           // in this reading
};

class Extraction {
 public:
  Extraction(const OpenedArchive& archive, const Limits& limits, Session* session, std::vector<Call>* calls)
      : archive_(archive),
        limits_(limits),
        session_(*session),
        calls_(*calls),
        passwords_([this] { return session_.AskPassword(archive_.input.Path()); }, archive.password_form,
                   archive.password),
        wanted_(archive.entries.size()) {}

  void Run();

 private:
  void ChooseEntries();
  bool MayBegin();
  void UseEngine(const Engine& engine);
  void ReadWith(const Engine& engine);
  void SettleLocked();
  std::unique_ptr<EntryReader> OpenReader(const Engine& engine, Reason* reason);
  void ExtractEntry(std::size_t index, const Entry& entry, EntryReader* reader);
  void WriteFile(std::size_t index, const Entry& entry, EntryReader* reader);
  bool GoOn(const std::string& path);
  void Fail(Call* call, const std::string& entry, const Reason& reason);
  void Stop(const Reason& reason);
  void SettleRest();

  const OpenedArchive& archive_;
  const Limits& limits_;
  Session& session_;
  std::vector<Call>& calls_;
  Passwords passwords_;
  std::vector<Wanted> wanted_;  // beside archive_.entries
  EntryMatcher::Index by_path_;
  std::size_t left_ = 0;  // entries that are wanted and not settled
  std::unique_ptr<EntryWriter> writer_;
  std::uint64_t done_ = 0;  // bytes
  std::uint64_t total_ = 0;
  bool may_grow_ = false;  // the user knows that it gets large
  Reason stopped_;         // why no more entries are tried
};

void Extraction::Run() {
  ChooseEntries();
  if (!MayBegin()) return SettleRest();
  for (std::size_t i = 0; i < archive_.engines.size() && left_ > 0 && stopped_.empty(); ++i) {
    UseEngine(archive_.engines[i]);
  }
  writer_->Finish(
      [this](Call* call, const std::string& entry, const Reason& reason) { Fail(call, entry, reason); });
  SettleRest();
  if (!archive_.problem.empty()) Fail(&calls_.back(), "", archive_.problem);
}

void Extraction::ChooseEntries() {
  std::unordered_map<std::string, Call*> by_name;
  std::unordered_map<std::string, Call*> unmatched;
  Call* all = nullptr;
  for (Call& call : calls_) {
    if (call.request.response_file.empty()) all = &call;
    for (const std::string& name : call.names) by_name.emplace(name, &call);
  }
  unmatched = by_name;
  for (std::size_t i = 0; i < archive_.entries.size(); ++i) {
    const Entry& entry = archive_.entries[i];
    by_path_[entry.path].push_back(i);
    const std::string name = ComparableName(ListedName(entry.path));
    const auto asked = by_name.find(name);
    wanted_[i].call = asked == by_name.end() ? all : asked->second;
    unmatched.erase(name);
    if (wanted_[i].call == nullptr) continue;
    ++left_;
    // What the archive declares may be anything; a sum that begins again at 0 would fit every disk.
    total_ += std::min(entry.size.value_or(0), std::numeric_limits<std::uint64_t>::max() - total_);
  }
  for (const auto& [name, call] : unmatched) Fail(call, name, why::kNoSuchEntry);
}

// Asks and refuses what is to be asked and refused before a byte is written.
bool Extraction::MayBegin() {
  const platform::Result opened =
      EntryWriter::Open(archive_.input, session_.ProtectedPaths(), calls_, &writer_);
  const platform::Result space = opened.ok() ? writer_->CheckSpace(total_) : opened;
  if (!space.ok()) {
    Stop(why::kAbout(space.path, space.reason));
    return false;
  }
  const std::size_t entries = archive_.entries.size();
  if (entries > limits_.entries && !session_.AskProceed(why::kAskEntries(archive_.input.Path(), entries))) {
    Stop(why::kManyEntries(entries));
    return false;
  }
  return true;
}

std::unique_ptr<EntryReader> Extraction::OpenReader(const Engine& engine, Reason* reason) {
  // The other thread goes by what is wanted now.
  std::vector<bool> wanted;
  for (const Wanted& entry : wanted_) wanted.push_back(entry.call != nullptr && entry.is_due);
  ReadAhead::Hooks hooks;
  hooks.is_wanted = [wanted = std::move(wanted),
                     matcher = EntryMatcher(by_path_)](const Entry& entry) mutable {
    const auto index = matcher.Find(entry);
    return index && wanted[*index] && (entry.kind == EntryKind::kFile || entry.kind == EntryKind::kLink);
  };
  hooks.may_wait = [this] { return GoOn(""); };
  return ReadAhead::Open(engine, archive_.input,
                         ReaderOptions{session_.Charset(), [this] { return passwords_.Current(); }},
                         std::move(hooks), reason);
}

// What one password does not open is read again with the next one.
void Extraction::UseEngine(const Engine& engine) {
  const auto is_locked = [](const Wanted& wanted) { return wanted.lacks_password; };
  passwords_.Restart();
  for (Wanted& wanted : wanted_) wanted.is_due = true;
  for (;;) {
    ReadWith(engine);
    const bool any_locked = std::any_of(wanted_.begin(), wanted_.end(), is_locked);
    if (!stopped_.empty() || !any_locked) return;
    if (!passwords_.Advance()) return SettleLocked();
    for (Wanted& wanted : wanted_) wanted.is_due = std::exchange(wanted.lacks_password, false);
  }
}

// No engine opens without the password.
void Extraction::SettleLocked() {
  for (std::size_t i = 0; i < wanted_.size(); ++i) {
    if (!wanted_[i].lacks_password) continue;
    Fail(wanted_[i].call, archive_.entries[i].path, wanted_[i].reason);
    wanted_[i] = {};
    --left_;
  }
}

void Extraction::ReadWith(const Engine& engine) {
  Reason reason;
  const auto reader = OpenReader(engine, &reason);
  EntryMatcher matcher(by_path_);
  ReadStatus status = ReadStatus::kOk;
  while (reader && left_ > 0 && stopped_.empty()) {
    Entry entry;
    status = reader->NextEntry(&entry);
    if (status != ReadStatus::kOk) break;
    const auto index = matcher.Find(entry);
    const Wanted* const wanted = index ? &wanted_[*index] : nullptr;
    if (wanted != nullptr && wanted->call != nullptr && wanted->is_due)
      ExtractEntry(*index, entry, reader.get());
  }
  if (reader && (status == ReadStatus::kOk || status == ReadStatus::kEnd)) return;
  if (reader) reason = reader->Problem();
  for (Wanted& wanted : wanted_) {
    if (wanted.call == nullptr || !wanted.is_due) continue;
    wanted.lacks_password = wanted.lacks_password || status == ReadStatus::kPassword;
    // That an engine is not there tells more than that the others do not know how it is packed.
    if (wanted.reason.empty() || (!reader && wanted.is_unsupported)) wanted.reason = reason;
  }
}

void Extraction::ExtractEntry(std::size_t index, const Entry& entry, EntryReader* reader) {
  Call* call = wanted_[index].call;
  Reason why;
  switch (writer_->Prepare(call, entry, session_, &why)) {
    case EntryWriter::Decision::kWriteFile:
      return WriteFile(index, entry, reader);
    case EntryWriter::Decision::kDone:
      break;
    case EntryWriter::Decision::kRefused:
      Fail(call, entry.path, why);
      break;
    case EntryWriter::Decision::kCancel:
      return Stop(why::kCancelled);
  }
  wanted_[index].call = nullptr;
  --left_;
}

void Extraction::WriteFile(std::size_t index, const Entry& entry, EntryReader* reader) {
  Wanted& wanted = wanted_[index];
  platform::Result result = writer_->Begin(entry);
  std::string_view piece;
  ReadStatus status = ReadStatus::kOk;
  std::uint64_t size = 0;
  while (result.ok() && (status = reader->ReadContent(&piece)) == ReadStatus::kOk) {
    result = writer_->Write(piece);
    size += piece.size();
    done_ += piece.size();
    if (result.ok() && !GoOn(entry.path)) return writer_->Discard();
  }
  if (result.ok() && status == ReadStatus::kEnd) result = writer_->Commit(wanted.call, entry);
  if (!result.ok()) {
    writer_->Discard();
    if (result.code == platform::Code::kNoSpace || result.code == platform::Code::kDenied) {
      return Stop(why::kAbout(result.path, result.reason));
    }
    Fail(wanted.call, entry.path, result.reason);
  } else if (status != ReadStatus::kEnd) {
    writer_->Discard();
    if (!stopped_.empty()) return;
    done_ -= size;
    wanted.lacks_password = status == ReadStatus::kPassword;
    // What an engine says of contents tells more than that it does not know the method.
    if (wanted.reason.empty() || status != ReadStatus::kUnsupported) {
      wanted.reason = reader->Problem();
      wanted.is_unsupported = status == ReadStatus::kUnsupported;
    }
    return;
  }
  wanted.call = nullptr;
  --left_;
}

// False when the pass is to end, for the reason that is in `stopped_` then.
bool Extraction::GoOn(const std::string& path) {
  const bool is_huge = done_ > limits_.bytes && done_ / limits_.ratio > archive_.input.Size();
  if (is_huge && !may_grow_) {
    may_grow_ = session_.AskProceed(why::kAskGrowth(archive_.input.Path(), limits_.ratio));
    if (!may_grow_) Stop(why::kGrowth(limits_.ratio));
  }
  if (stopped_.empty() && !session_.Progress(path, done_, total_)) Stop(why::kCancelled);
  return stopped_.empty();
}

void Extraction::Fail(Call* call, const std::string& entry, const Reason& reason) {
  call->failed = true;
  call->log.push_back("failed     " + (entry.empty() ? "" : ListedName(entry) + ": ") +
                      Sentence(reason, Language::kEnglish));
  session_.Problem(ListedName(entry), reason);
}

void Extraction::Stop(const Reason& reason) {
  stopped_ = reason;
}

// What is still wanted could not be had: an entry with a reason of its own is named, the others go with the
// reason for the end of the pass.
void Extraction::SettleRest() {
  if (!stopped_.empty()) {
    session_.Problem("", stopped_);
    for (Call& call : calls_) {
      call.failed = true;
      call.log.push_back("stopped    " + Sentence(stopped_, Language::kEnglish));
    }
    return;
  }
  for (std::size_t i = 0; i < wanted_.size(); ++i) {
    if (wanted_[i].call == nullptr) continue;
    const Reason& reason = wanted_[i].reason;
    Fail(wanted_[i].call, archive_.entries[i].path, reason.empty() ? why::kUnreadable : reason);
  }
}

}  // namespace

void Extract(const OpenedArchive& archive, const Limits& limits, Session* session, std::vector<Call>* calls) {
  Extraction(archive, limits, session, calls).Run();
}

}  // namespace quendle::modules
