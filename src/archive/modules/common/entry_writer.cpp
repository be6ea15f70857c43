#include "archive/modules/common/entry_writer.h"

#include <algorithm>
#include <utility>

#include "archive/modules/common/response_file.h"
#include "platform/entries/entry_path.h"

namespace quendle::modules {
namespace {

using Owner = platform::ProtectedEntries::Owner;
using Taken = platform::ExtractionFolder::Taken;
using platform::WithoutRoot;

std::string WithSeparator(std::string folder) {
  const bool windows = platform::kHostNames == platform::NameRules::kWindows;
  if (windows) std::replace(folder.begin(), folder.end(), '\\', '/');
  if (!folder.ends_with('/')) folder += '/';
  return folder;
}

// The longest folder that all begin with, with a separator at its end.
std::string CommonFolder(const std::vector<Call>& calls) {
  std::string common = WithSeparator(calls.front().request.folder);
  for (const Call& call : calls) {
    const std::string folder = WithSeparator(call.request.folder);
    const auto differ = std::mismatch(common.begin(), common.end(), folder.begin(), folder.end());
    common.erase(differ.first, common.end());
    common.erase(common.rfind('/') + 1);
  }
  return common;
}

// What WithoutRoot takes off.
std::string RootOf(const std::string& path) {
  return path.substr(0, path.size() - WithoutRoot(path).size());
}

// The last part of a path, with the "/" at its end if it has one.
std::string_view LastPart(std::string_view path) {
  const std::size_t cut = path.rfind('/', path.size() < 2 ? 0 : path.size() - 2);
  return cut == std::string_view::npos ? path : path.substr(cut + 1);
}

}  // namespace

platform::Result EntryWriter::Open(const ArchiveInput& archive,
                                   const std::vector<std::string>& protected_paths,
                                   const std::vector<Call>& calls, EntryLog* log,
                                   std::unique_ptr<EntryWriter>* writer) {
  std::string base = CommonFolder(calls);
  std::unique_ptr<platform::ExtractionFolder> folder;
  platform::Result result = platform::ExtractionFolder::Open(base, &folder);
  if (!result.ok()) return result;
  folder->MarkLike(archive.Path());
  platform::ProtectedEntries entries;
  for (const std::string& path : archive.Paths()) entries.Add(path, Owner::kArchive);
  for (const std::string& path : protected_paths) entries.Add(path, Owner::kProgram);
  folder->Protect(std::move(entries));
  writer->reset(new EntryWriter(std::move(base), std::move(folder), log));
  return result;
}

EntryWriter::Decision EntryWriter::Prepare(Call* call, const Entry& entry, const Session& session,
                                           Reason* why) {
  replace_ = Replace::kNothing;
  note_.clear();
  if (entry.kind == EntryKind::kFolder && !call->request.with_paths) return Decision::kDone;
  const platform::Result named = FindPath(*call, entry);
  if (!named.ok()) return Decide(named, call, entry, why);
  if (folder_->MayMeetHanded(path_)) return Decision::kWait;
  switch (entry.kind) {
    case EntryKind::kFolder:
      return Decide(folder_->MakeFolder(path_, entry.attributes), call, entry, why);
    case EntryKind::kOther:
      *why = why::kOddKind;
      return Decision::kRefused;
    case EntryKind::kLink:
    case EntryKind::kFile:
      break;
  }
  const Decision decision = SettleConflict(call, entry, session, why);
  if (decision != Decision::kWriteFile || entry.kind == EntryKind::kFile) return decision;
  links_[path_] = {call, entry.path};
  return Decide(folder_->AddLink(path_, entry.link_target, replace_), call, entry, why);
}

// The path is checked twice: the entry's own may not lead out of the call's folder, nor may both together be
// too long.
platform::Result EntryWriter::FindPath(const Call& call, const Entry& entry) {
  std::string own;
  platform::Result result = platform::SafeEntryPath(WithoutRoot(entry.path), platform::kHostNames, &own);
  if (!result.ok()) return result;
  if (!call.request.with_paths) own = LastPart(own);
  const std::string below = WithSeparator(call.request.folder).substr(base_.size()) + own;
  return platform::SafeRestOfPath(below, platform::kHostNames, &path_);
}

EntryWriter::Decision EntryWriter::SettleConflict(Call* call, const Entry& entry, const Session& session,
                                                  Reason* why) {
  platform::ExtractionFolder::Occupant occupant;
  platform::Result result = folder_->Look(path_, &occupant);
  if (result.ok() && links_.contains(path_)) occupant.taken = Taken::kOurs;
  // One of them may be it, on a file system that knows more spellings of a name.
  if (!IsSettled() && (!result.ok() || occupant.taken != Taken::kFree)) return Decision::kWait;
  if (!result.ok()) return Decide(result, call, entry, why);
  switch (occupant.taken) {
    case Taken::kFree:
      return Decision::kWriteFile;
    case Taken::kFolder:
      *why = why::kFolderInWay;
      return Decision::kRefused;
    case Taken::kOurs:
      result = folder_->FreeName(path_, &path_);
      note_ = " as " + std::string(LastPart(path_)) + ", since another entry has that name";
      return result.ok() ? Decision::kWriteFile : Decide(result, call, entry, why);
    case Taken::kFile:
      break;
  }
  return AskToReplace(call, entry, occupant.version, session);
}

EntryWriter::Decision EntryWriter::AskToReplace(Call* call, const Entry& entry,
                                                const platform::FileSide& existing, const Session& session) {
  const auto& time = entry.attributes.write_time;
  replace_ = Replace::kFile;
  switch (call->request.existing) {
    case Existing::kReplace:
      return Decision::kWriteFile;
    case Existing::kUpdate:
      if (time && time->seconds > existing.write_time) return Decision::kWriteFile;
      note_ = ": the file that is there is not older";
      break;
    case Existing::kAsk: {
      const platform::FileSide incoming{entry.path, entry.size.value_or(0), time ? time->seconds : 0};
      const Session::Answer answer = session.AskOverwrite(existing, incoming);
      if (answer == Session::Answer::kYes) return Decision::kWriteFile;
      if (answer == Session::Answer::kCancel) return Decision::kCancel;
      note_ = ": the file that is there was to be kept";
      break;
    }
  }
  log_.Add(call, LineOf("kept       ", entry));
  return Decision::kDone;
}

EntryWriter::Decision EntryWriter::Decide(const platform::Result& result, Call* call, const Entry& entry,
                                          Reason* why) {
  if (result.ok()) {
    log_.Add(call, LineOf("extracted  ", entry));
    return Decision::kDone;
  }
  const bool is_named = result.path.empty() || result.path == WithoutRoot(entry.path);
  *why = is_named ? result.reason : why::kAbout(result.reason, result.path);
  return Decision::kRefused;
}

platform::Result EntryWriter::Commit(Call* call, const Entry& entry) {
  platform::Result result = folder_->CommitFile(path_, entry.attributes, replace_);
  if (result.ok()) log_.Add(call, LineOf("extracted  ", entry));
  return result;
}

platform::Result EntryWriter::HandOver(Call* call, const Entry& entry, ContentBuffer content) {
  platform::Result result = folder_->HandFile(path_, std::move(content), entry.attributes);
  if (result.ok()) log_.Await(call, entry.path, LineOf("extracted  ", entry));
  return result;
}

platform::Result EntryWriter::Settle(std::chrono::milliseconds wait) {
  for (platform::Result& result : folder_->TakeHanded(wait)) {
    if (platform::ConcernsAll(result.code)) return std::move(result);
    log_.Settle(result);
  }
  return platform::Success();
}

void EntryWriter::Finish() {
  for (const platform::Result& failure : folder_->Finish()) {
    const auto link = links_.find(failure.path);
    if (link != links_.end()) log_.Fail(link->second.first, link->second.second, failure.reason);
  }
}

std::string EntryWriter::LineOf(const char* what, const Entry& entry) const {
  const std::string listed = ListedName(entry.path);
  std::string line = std::string(what).append(listed);
  if (const std::string root = RootOf(entry.path); !root.empty()) {
    line.append(" (in the archive ").append(root).append(listed).append(")");
  }
  return line.append(note_);
}

}  // namespace quendle::modules
