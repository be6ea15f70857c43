#include "archive/modules/common/extraction.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <memory>
#include <optional>
#include <unordered_map>
#include <utility>

#include "archive/modules/common/entry_log.h"
#include "archive/modules/common/entry_matcher.h"
#include "archive/modules/common/entry_writer.h"
#include "archive/modules/common/read_ahead.h"
#include "archive/modules/common/response_file.h"

namespace quendle::modules {
namespace {

// At whether the user cancels; so many bytes take a slow disk not much longer.
constexpr std::chrono::milliseconds kBetweenLooks{20};
constexpr std::size_t kBytesBetweenLooks = 256U << 10;

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
        log_(session),
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
  std::unique_ptr<ReadAhead> OpenReader(const Engine& engine, Reason* reason);
  void ExtractEntry(std::size_t index, const Entry& entry, ReadAhead* reader);
  void WriteFile(std::size_t index, const Entry& entry, ReadAhead* reader);
  void HandOver(std::size_t index, const Entry& entry, ContentBuffer content);
  void SettleEntry(std::size_t index, const Entry& entry, const platform::Result& result);
  bool Settle(std::chrono::milliseconds wait);
  bool SettleAll();
  void EndWriting();
  bool GoOn(const std::string& path);
  void Stop(const Reason& reason);
  void SettleRest();

  const OpenedArchive& archive_;
  const Limits& limits_;
  Session& session_;
  std::vector<Call>& calls_;
  EntryLog log_;
  Passwords passwords_;
  std::vector<Wanted> wanted_;  // beside archive_.entries
  std::size_t left_ = 0;        // entries that are wanted and not settled
  std::unique_ptr<EntryWriter> writer_;
  std::uint64_t done_ = 0;  // bytes
  std::uint64_t total_ = 0;
  bool may_grow_ = false;  // the user knows that it gets large
  Reason stopped_;         // why no more entries are tried
  bool is_cancelled_ = false;
};

void Extraction::Run() {
  ChooseEntries();
  if (!MayBegin()) return SettleRest();
  for (std::size_t i = 0; i < archive_.engines.size() && left_ > 0 && stopped_.empty(); ++i) {
    UseEngine(archive_.engines[i]);
  }
  EndWriting();
  writer_->Finish();
  SettleRest();
  if (!archive_.problem.empty()) log_.Fail(&calls_.back(), "", archive_.problem);
}

void Extraction::ChooseEntries() {
  struct Asker {
    Call* call;
    bool is_met;
  };
  std::unordered_map<std::string_view, Asker> by_name;
  Call* all = nullptr;
  for (Call& call : calls_) {
    if (call.request.response_file.empty()) all = &call;
    for (const std::string& name : call.names) by_name.emplace(name, Asker{&call, false});
  }
  for (std::size_t i = 0; i < archive_.entries.size(); ++i) {
    const Entry& entry = archive_.entries[i];
    const auto asker = by_name.find(ComparableName(ListedName(entry.path)));
    wanted_[i].call = asker == by_name.end() ? all : asker->second.call;
    if (asker != by_name.end()) asker->second.is_met = true;
    if (wanted_[i].call == nullptr) continue;
    ++left_;
    // What the archive declares may be anything; a sum that begins again at 0 would fit every disk.
    total_ += std::min(entry.size.value_or(0), std::numeric_limits<std::uint64_t>::max() - total_);
  }
  for (const Call& call : calls_) {
    for (const std::string& name : call.names) {
      Asker& asker = by_name.at(name);
      if (!std::exchange(asker.is_met, true)) log_.Fail(asker.call, name, why::kNoSuchEntry);
    }
  }
}

// Asks and refuses what is to be asked and refused before a byte is written.
bool Extraction::MayBegin() {
  const platform::Result opened =
      EntryWriter::Open(archive_.input, session_.ProtectedPaths(), calls_, &log_, &writer_);
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

std::unique_ptr<ReadAhead> Extraction::OpenReader(const Engine& engine, Reason* reason) {
  // The other thread goes by what is wanted now.
  std::vector<bool> wanted;
  for (const Wanted& entry : wanted_) wanted.push_back(entry.call != nullptr && entry.is_due);
  ReadAhead::Hooks hooks;
  hooks.is_wanted = [wanted = std::move(wanted),
                     matcher = EntryMatcher(archive_.entries)](const Entry& entry) mutable {
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
    log_.Fail(wanted_[i].call, archive_.entries[i].path, wanted_[i].reason);
    wanted_[i] = {};
    --left_;
  }
}

void Extraction::ReadWith(const Engine& engine) {
  Reason reason;
  if (!SettleAll()) return;
  const auto reader = OpenReader(engine, &reason);
  EntryMatcher matcher(archive_.entries);
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

void Extraction::ExtractEntry(std::size_t index, const Entry& entry, ReadAhead* reader) {
  Call* call = wanted_[index].call;
  Reason why;
  switch (writer_->Prepare(call, entry, session_, &why)) {
    case EntryWriter::Decision::kWriteFile:
      return WriteFile(index, entry, reader);
    case EntryWriter::Decision::kWait:
      if (SettleAll()) ExtractEntry(index, entry, reader);
      return;
    case EntryWriter::Decision::kDone:
      break;
    case EntryWriter::Decision::kRefused:
      log_.Fail(call, entry.path, why);
      break;
    case EntryWriter::Decision::kCancel:
      return Stop(why::kCancelled);
  }
  wanted_[index].call = nullptr;
  --left_;
}

void Extraction::WriteFile(std::size_t index, const Entry& entry, ReadAhead* reader) {
  ContentBuffer whole;
  if (writer_->MayHandOver() && reader->TakeWhole(&whole)) return HandOver(index, entry, std::move(whole));
  Wanted& wanted = wanted_[index];
  platform::Result result = writer_->Begin(entry);
  std::string_view piece;
  ReadStatus status = ReadStatus::kOk;
  std::uint64_t size = 0;
  while (result.ok() && (!piece.empty() || (status = reader->ReadContent(&piece)) == ReadStatus::kOk)) {
    const std::string_view part = piece.substr(0, kBytesBetweenLooks);
    piece.remove_prefix(part.size());
    result = writer_->Write(part);
    size += part.size();
    done_ += part.size();
    if (result.ok() && !GoOn(entry.path)) return writer_->Discard();
  }
  // Those before it have their names before it has its own.
  if (!SettleAll()) return writer_->Discard();
  if (result.ok() && status == ReadStatus::kEnd) result = writer_->Commit(wanted.call, entry);
  if (!result.ok() || status == ReadStatus::kEnd) return SettleEntry(index, entry, result);
  writer_->Discard();
  if (!stopped_.empty()) return;
  done_ -= size;
  wanted.lacks_password = status == ReadStatus::kPassword;
  // What an engine says of contents tells more than that it does not know the method.
  if (wanted.reason.empty() || status != ReadStatus::kUnsupported) {
    wanted.reason = reader->Problem();
    wanted.is_unsupported = status == ReadStatus::kUnsupported;
  }
}

void Extraction::HandOver(std::size_t index, const Entry& entry, ContentBuffer content) {
  const std::size_t size = content.View().size();
  bool goes_on = Settle({});
  while (goes_on && !writer_->HasRoom(size)) goes_on = Settle(kBetweenLooks) && GoOn("");
  done_ += size;
  if (!goes_on || !GoOn(entry.path)) return;
  SettleEntry(index, entry, writer_->HandOver(wanted_[index].call, entry, std::move(content)));
}

// The entry is written, or on its way, or cannot be written.
void Extraction::SettleEntry(std::size_t index, const Entry& entry, const platform::Result& result) {
  if (!result.ok()) {
    writer_->Discard();
    if (platform::ConcernsAll(result.code)) return Stop(why::kAbout(result.path, result.reason));
    log_.Fail(wanted_[index].call, entry.path, result.reason);
  }
  wanted_[index].call = nullptr;
  --left_;
}

// Of files that were handed over, those that are there. False when the pass is to end.
bool Extraction::Settle(std::chrono::milliseconds wait) {
  const platform::Result result = writer_->Settle(wait);
  if (result.ok()) return true;
  writer_->DiscardHanded();
  Stop(why::kAbout(result.path, result.reason));
  return false;
}

bool Extraction::SettleAll() {
  while (!writer_->IsSettled()) {
    if (!Settle(kBetweenLooks) || !GoOn("")) return false;
  }
  return true;
}

// After a cancel what was handed over gets no name any more, and what has one is told; otherwise all is written.
void Extraction::EndWriting() {
  if (stopped_.empty()) (void)SettleAll();
  if (is_cancelled_) writer_->DiscardHanded();
  while (!writer_->IsSettled() && Settle(kBetweenLooks)) {
    if (!session_.Progress("", done_, total_)) writer_->DiscardHanded();
  }
  log_.Forget();
}

// False when the pass is to end, for the reason that is in `stopped_` then.
bool Extraction::GoOn(const std::string& path) {
  const bool is_huge = done_ > limits_.bytes && done_ / limits_.ratio > archive_.input.Size();
  if (is_huge && !may_grow_) {
    may_grow_ = session_.AskProceed(why::kAskGrowth(archive_.input.Path(), limits_.ratio));
    if (!may_grow_) Stop(why::kGrowth(limits_.ratio));
  }
  if (stopped_.empty() && !session_.Progress(path, done_, total_)) {
    is_cancelled_ = true;
    Stop(why::kCancelled);
  }
  return stopped_.empty();
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
    log_.Fail(wanted_[i].call, archive_.entries[i].path, reason.empty() ? why::kUnreadable : reason);
  }
}

}  // namespace

void Extract(const OpenedArchive& archive, const Limits& limits, Session* session, std::vector<Call>* calls) {
  Extraction(archive, limits, session, calls).Run();
}

}  // namespace quendle::modules
