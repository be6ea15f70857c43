#include "platform/extraction/extraction_folder.h"
#include "platform/process/system_failure.h"

#include <map>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "platform/entries/entry_path.h"
#include "platform/entries/path_names.h"
#include "platform/extraction/file_writers.h"
#include "platform/extraction/open_folders.h"
#include "platform/extraction/origin_mark.h"
#include "platform/extraction/unfinished_file.h"
#include "platform/process/undone_at_exit.h"

namespace quendle::platform {
namespace {

using Replace = ExtractionFolder::Replace;

struct Link {
  std::string path;
  std::string target;
  Replace replace;
};

std::string ParentOf(const std::string& path) {
  const std::size_t cut = path.rfind('/');
  return cut == std::string::npos ? "" : path.substr(0, cut);
}

Result CheckPath(const std::string& path) {
  std::string safe;
  Result result = SafeRestOfPath(path, kHostNames, &safe);
  if (result.ok() && (safe != path || path.empty())) return Failure(Code::kRefused, path, why::kUnsafePath);
  return result;
}

Result NoFile(const std::string& path) {
  return Failure(Code::kRefused, path, why::kNotBegun);
}

}  // namespace

bool ConcernsAll(Code code) {
  return code == Code::kNoSpace || code == Code::kDenied;
}

class ExtractionFolder::Impl final : private UndoneAtExit {
 public:
  explicit Impl(OpenFolder top) : folders(std::move(top)) {}

  // Opens the folder that `path` is in.
  Result EnterParent(const std::string& path, bool make, FolderHandle* folder) {
    if (path != checked_path) {  // each file's comes several times
      Result result = CheckPath(path);
      if (!result.ok()) return result;
      checked_path = path;
    }
    return Enter(ParentOf(path), make, folder);
  }

  Result Enter(const std::string& path, bool make, FolderHandle* folder) {
    return top_allows.ok() ? folders.Enter(path, make, folder) : top_allows;
  }

  // At the last moment, since anything may have come to have the name meanwhile.
  Result CheckTaking(const OpenFolder& to, const std::string& name, Replace replace) const {
    Result result = protection.CheckName(to, name);
    EntryStatus there;
    if (result.ok() && replace == Replace::kFile && to.StatusOf(name, &there).ok())
      result = protection.CheckEntry(to, name, there);
    return result;
  }

  // Gives what has the temporary name in `from` its own.
  Result Place(const OpenFolder& from, const std::string& temporary, const OpenFolder& to,
               const std::string& path, Replace replace) const {
    const std::string name = NameOf(path);
    if (Result allowed = CheckTaking(to, name, replace); !allowed.ok()) return allowed;
    const int error = from.Rename(temporary, to, name, replace == Replace::kFile);
    if (error == 0) return Success();
    Result result = SystemFailure(error, folders.Shown(path));
    EntryStatus taken;
    if (!to.StatusOf(name, &taken).ok()) return result;
    if (taken.is_folder()) return Failure(Code::kIsFolder, folders.Shown(path), why::kFolderThere);
    if (result.code == Code::kExists) result.reason = why::kSomethingThere;
    return result;
  }

  Result PlaceFile(const OpenFolder& to, const std::string& path, Replace replace,
                   UnfinishedFile* file) const {
    Result result = file->folder().Unhide(file->temporary_name());
    if (result.ok()) result = Place(file->folder(), file->temporary_name(), to, path, replace);
    if (!result.ok()) return result;
    file->HasItsName();
    if (!mark.empty()) WriteOriginMark(to, NameOf(path), mark);
    return result;
  }

  FileWriters& Writers() {
    if (!writers) {
      writers.emplace([this](const FileWriters::File& file, UnfinishedFile* written) {
        return PlaceFile(*file.folder, file.path, Replace::kNothing, written);
      });
    }
    return *writers;
  }

  Result MakeLink(const Link& link);

  OpenFolders folders;
  ProtectedEntries protection;
  Result top_allows;
  std::string checked_path;
  // One for all: it is in use for one entry at a time.
  std::string temporary_name = TemporaryPath("");
  std::unique_ptr<UnfinishedFile> unfinished;
  std::string mark;
  std::unordered_set<EntryId, EntryIdHash> ours;           // the files that were committed
  std::unordered_map<std::string, unsigned> last_numbers;  // that FreeName gave
  std::vector<Link> links;
  std::unordered_set<std::string> link_paths;  // of those, which nothing else is to get
  std::map<std::string, EntryTime> folder_times;
  std::optional<FileWriters> writers;  // use all of the above that does not change

 private:
  void UndoAtExit() override { unfinished.reset(); }
};

Result ExtractionFolder::Impl::MakeLink(const Link& link) {
  FolderHandle folder;
  Result result = EnterParent(link.path, true, &folder);
  if (!result.ok()) return result;
  const std::string name = NameOf(link.path);
  EntryStatus status;
  Replace replace = link.replace;
  // Another entry of the archive came to have the name since the link was noted.
  if (folder->StatusOf(name, &status).ok() && ours.contains(status.id)) replace = Replace::kNothing;
  result = folder->MakeLink(temporary_name, link.target);
  result.path = result.ok() ? "" : folders.Shown(link.path);
  if (!result.ok()) return result;
  result = folder->StatusOf(temporary_name, &status);
  if (!result.ok()) return Failure(result.code, folders.Shown(link.path), result.reason);
  result = Place(*folder, temporary_name, *folder, link.path, replace);
  if (result.ok()) {
    ours.insert(status.id);
  } else {
    (void)folder->Remove(temporary_name);
  }
  return result;
}

Result ExtractionFolder::Open(const std::string& folder, std::unique_ptr<ExtractionFolder>* opened) {
  OpenFolder top;
  Result result = OpenFolder::Open(folder, WithoutTrailingSlashes(folder), OpenFolder::Use::kPass, &top);
  if (result.ok()) opened->reset(new ExtractionFolder(std::make_unique<Impl>(std::move(top))));
  return result;
}

ExtractionFolder::ExtractionFolder(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}

ExtractionFolder::~ExtractionFolder() = default;

void ExtractionFolder::MarkLike(const std::string& archive) {
  impl_->mark = ReadOriginMark(archive);
}

void ExtractionFolder::Protect(ProtectedEntries entries) {
  impl_->protection = std::move(entries);
  impl_->folders.Protect(&impl_->protection);
  impl_->top_allows = impl_->protection.CheckFolderAndAbove(impl_->folders.top());
}

Result ExtractionFolder::CheckSpace(std::uint64_t bytes) const {
  std::optional<std::uint64_t> free;
  Result result = impl_->folders.top().FreeBytes(&free);
  if (!result.ok() || !free || bytes <= *free) return result;
  return Failure(Code::kNoSpace, impl_->folders.Shown(""), why::kTooLittleSpace(*free, bytes));
}

Result ExtractionFolder::Look(const std::string& path, Occupant* occupant) {
  *occupant = {};
  FolderHandle folder;
  Result result = impl_->EnterParent(path, false, &folder);
  if (result.code == Code::kNotFound) return Success();
  if (!result.ok()) return result;
  const std::string name = NameOf(path);
  result = impl_->protection.CheckName(*folder, name);
  if (!result.ok()) return result;
  EntryStatus status;
  result = folder->StatusOf(name, &status);
  if (!result.ok()) return result.code == Code::kNotFound ? Success() : result;
  result = impl_->protection.CheckEntry(*folder, name, status);
  if (!result.ok()) return result;
  const bool is_ours = impl_->ours.contains(status.id);
  occupant->taken = status.is_folder() ? Taken::kFolder : is_ours ? Taken::kOurs : Taken::kFile;
  occupant->version = {impl_->folders.Shown(path), status.is_folder() ? 0 : status.size,
                       status.write_time.seconds};
  return Success();
}

Result ExtractionFolder::MakeFolder(const std::string& path, const EntryAttributes& attributes) {
  Result result = CheckPath(path);
  if (!result.ok()) return result;
  FolderHandle folder;
  result = impl_->Enter(path, true, &folder);
  if (result.ok() && attributes.write_time)
    impl_->folder_times.insert_or_assign(path, ValidTime(*attributes.write_time));
  return result;
}

Result ExtractionFolder::BeginFile(const std::string& path, std::optional<std::uint64_t> expected_size) {
  DiscardFile();
  FolderHandle folder;
  Result result = impl_->EnterParent(path, true, &folder);
  if (!result.ok()) return result;
  result = UnfinishedFile::Make(std::move(folder), impl_->temporary_name, impl_->folders.Shown(path),
                                &impl_->unfinished);
  if (!result.ok() || !expected_size) return result;
  result = impl_->unfinished->SetAside(*expected_size);
  if (!result.ok()) DiscardFile();
  return result;
}

Result ExtractionFolder::Write(std::string_view bytes) {
  if (!impl_->unfinished) return NoFile(impl_->folders.Shown(""));
  Result result = impl_->unfinished->Write(bytes);
  if (!result.ok()) DiscardFile();
  return result;
}

Result ExtractionFolder::CommitFile(const std::string& path, const EntryAttributes& attributes,
                                    Replace replace) {
  if (!impl_->unfinished) return NoFile(impl_->folders.Shown(path));
  FolderHandle folder;
  Result result = impl_->EnterParent(path, true, &folder);
  if (result.ok()) result = impl_->unfinished->Complete(attributes);
  if (result.ok()) result = impl_->PlaceFile(*folder, path, replace, impl_->unfinished.get());
  if (result.code == Code::kExists || result.code == Code::kIsFolder) return result;
  if (result.ok()) impl_->ours.insert(impl_->unfinished->id());
  DiscardFile();
  return result;
}

void ExtractionFolder::DiscardFile() {
  impl_->unfinished.reset();
}

bool ExtractionFolder::WritesBehind() {
  return impl_->Writers().AreUseful();
}

bool ExtractionFolder::HasRoom(std::size_t size) const {
  return !impl_->writers || impl_->writers->HasRoom(size);
}

bool ExtractionFolder::MayMeetHanded(const std::string& path) {
  return impl_->writers && impl_->writers->MayMeet(path);
}

Result ExtractionFolder::HandFile(const std::string& path, ContentBuffer content,
                                  const EntryAttributes& attributes) {
  FolderHandle folder;
  Result result = impl_->EnterParent(path, true, &folder);
  if (!result.ok()) return result;
  impl_->Writers().Hand(
      {std::move(folder), path, impl_->folders.Shown(path), std::move(content), attributes});
  return result;
}

std::size_t ExtractionFolder::Handed() const {
  return impl_->writers ? impl_->writers->Count() : 0;
}

std::vector<Result> ExtractionFolder::TakeHanded(std::chrono::milliseconds wait) {
  std::vector<Result> results;
  if (!impl_->writers) return results;
  for (FileWriters::Outcome& outcome : impl_->writers->Take(wait)) {
    if (outcome.result.ok()) impl_->ours.insert(outcome.id);
    results.push_back(std::move(outcome.result));
  }
  return results;
}

void ExtractionFolder::DiscardHanded() {
  if (impl_->writers) impl_->writers->Discard();
}

Result ExtractionFolder::FreeName(const std::string& path, std::string* free_path) {
  // Where a name comes a hundred thousand times, the search cannot begin at 2 each time.
  unsigned& number = impl_->last_numbers.try_emplace(path, 2).first->second;
  for (;; ++number) {
    std::string candidate = NumberedPath(path, number, false);
    Occupant occupant;
    Result result = Look(candidate, &occupant);
    if (!result.ok()) return result;
    if (occupant.taken != Taken::kFree || impl_->link_paths.contains(candidate)) continue;
    *free_path = std::move(candidate);
    return Success();
  }
}

Result ExtractionFolder::AddLink(const std::string& path, const std::string& target, Replace replace) {
  Result result = CheckPath(path);
  if (result.ok()) result = CheckLinkTarget(path, target);
  if (result.ok()) {
    impl_->links.push_back({path, target, replace});
    impl_->link_paths.insert(path);
  }
  return result;
}

std::vector<Result> ExtractionFolder::Finish() {
  std::vector<Result> failures;
  impl_->link_paths.clear();
  for (const Link& link : std::exchange(impl_->links, {})) {
    Result result = impl_->MakeLink(link);
    if (result.ok()) continue;
    if (result.path != impl_->folders.Shown(link.path))
      result.reason = why::kAbout(result.path, result.reason);
    result.path = link.path;
    failures.push_back(std::move(result));
  }
  // The deepest first. A time that cannot be set harms nobody.
  const auto folder_times = std::exchange(impl_->folder_times, {});
  for (auto entry = folder_times.rbegin(); entry != folder_times.rend(); ++entry) {
    FolderHandle parent;
    if (impl_->folders.Enter(ParentOf(entry->first), false, &parent).ok())
      parent->SetWriteTime(NameOf(entry->first), entry->second);
  }
  return failures;
}

}  // namespace quendle::platform
