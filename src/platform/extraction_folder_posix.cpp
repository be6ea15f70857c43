#include <cerrno>
#include <cstdio>
#include <map>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include "platform/descriptor_posix.h"
#include "platform/entry_names_posix.h"
#include "platform/entry_path.h"
#include "platform/extraction_folder.h"
#include "platform/open_folders_posix.h"
#include "platform/unfinished_file_posix.h"

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
  if (result.ok() && (safe != path || path.empty()))
    return Failure(Code::kRefused, path, "this is no safe path");
  return result;
}

Result NoFile(const std::string& path) {
  return Failure(Code::kRefused, path, "no file was begun");
}

}  // namespace

class ExtractionFolder::Impl {
 public:
  Impl(Descriptor top, std::string shown) : folders(std::move(top), std::move(shown)) {}

  // Opens the folder that `path` is in.
  Result EnterParent(const std::string& path, bool make, FolderHandle* folder) {
    if (path != checked_path) {  // each file's comes several times
      Result result = CheckPath(path);
      if (!result.ok()) return result;
      checked_path = path;
    }
    return folders.Enter(ParentOf(path), make, folder);
  }

  // Gives what has the temporary name in `from` its own.
  Result Place(const Descriptor& from, const Descriptor& to, const std::string& path, Replace replace) const {
    const std::string name = NameOf(path);
    int error = 0;
    if (replace == Replace::kNothing) {
      error = RenameWithoutReplacing(from.get(), temporary_name.c_str(), to.get(), name.c_str());
    } else if (renameat(from.get(), temporary_name.c_str(), to.get(), name.c_str()) != 0) {
      error = errno;
    }
    if (error == 0) return Success();
    struct stat taken;
    if (fstatat(to.get(), name.c_str(), &taken, AT_SYMLINK_NOFOLLOW) == 0) {
      if (S_ISDIR(taken.st_mode))
        return Failure(Code::kIsFolder, folders.Shown(path), "a folder of that name is there");
      if (error == EEXIST)
        return Failure(Code::kExists, folders.Shown(path), "something of that name is there");
    }
    return SystemFailure(error, folders.Shown(path));
  }

  bool IsOurs(const struct stat& entry) const {
    const auto found = ours.find(entry.st_dev);
    return found != ours.end() && found->second.contains(entry.st_ino);
  }

  void AddOurs(const struct stat& entry) { ours[entry.st_dev].insert(entry.st_ino); }

  Result MakeLink(const Link& link);

  OpenFolders folders;
  std::string checked_path;
  // One for all: it is in use for one entry at a time.
  std::string temporary_name = TemporaryPath("");
  std::unique_ptr<UnfinishedFile> unfinished;
  std::map<dev_t, std::unordered_set<ino_t>> ours;         // the files that were committed
  std::unordered_map<std::string, unsigned> last_numbers;  // that FreeName gave
  std::vector<Link> links;
  std::unordered_set<std::string> link_paths;  // of those, which nothing else is to get
  std::map<std::string, timespec> folder_times;
};

Result ExtractionFolder::Impl::MakeLink(const Link& link) {
  FolderHandle folder;
  Result result = EnterParent(link.path, true, &folder);
  if (!result.ok()) return result;
  const std::string name = NameOf(link.path);
  struct stat status;
  Replace replace = link.replace;
  // Another entry of the archive came to have the name since the link was noted.
  if (fstatat(folder->get(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 && IsOurs(status))
    replace = Replace::kNothing;
  const char* temporary = temporary_name.c_str();
  if (symlinkat(link.target.c_str(), folder->get(), temporary) != 0)
    return LastSystemFailure(folders.Shown(link.path));
  if (fstatat(folder->get(), temporary, &status, AT_SYMLINK_NOFOLLOW) != 0) {
    result = LastSystemFailure(folders.Shown(link.path));
  } else {
    result = Place(*folder, *folder, link.path, replace);
  }
  if (result.ok()) {
    AddOurs(status);
  } else {
    unlinkat(folder->get(), temporary, 0);
  }
  return result;
}

Result ExtractionFolder::Open(const std::string& folder, std::unique_ptr<ExtractionFolder>* opened) {
  Descriptor top(Retried([&] { return open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC); }));
  if (!top.ok()) return LastSystemFailure(folder);
  auto impl = std::make_unique<Impl>(std::move(top), WithoutTrailingSlashes(folder));
  opened->reset(new ExtractionFolder(std::move(impl)));
  return Success();
}

ExtractionFolder::ExtractionFolder(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}

ExtractionFolder::~ExtractionFolder() = default;

Result ExtractionFolder::CheckSpace(std::uint64_t bytes) const {
  struct statvfs space;
  const std::string shown = impl_->folders.Shown("");
  if (Retried([&] { return fstatvfs(impl_->folders.top(), &space); }) != 0) return LastSystemFailure(shown);
  // Without blocks, as some network file systems are, there is no telling.
  if (space.f_blocks == 0 || space.f_frsize == 0) return Success();
  const std::uint64_t blocks = bytes / space.f_frsize + (bytes % space.f_frsize == 0 ? 0 : 1);
  if (blocks <= space.f_bavail) return Success();
  return Failure(Code::kNoSpace, shown,
                 "there are only " + std::to_string(space.f_bavail * space.f_frsize) + " bytes free, " +
                     std::to_string(bytes) + " are needed");
}

Result ExtractionFolder::Look(const std::string& path, Occupant* occupant) {
  *occupant = {};
  FolderHandle folder;
  Result result = impl_->EnterParent(path, false, &folder);
  if (result.code == Code::kNotFound) return Success();
  if (!result.ok()) return result;
  struct stat status;
  if (fstatat(folder->get(), NameOf(path).c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
    return errno == ENOENT ? Success() : LastSystemFailure(impl_->folders.Shown(path));
  const bool is_folder = S_ISDIR(status.st_mode);
  occupant->taken = is_folder ? Taken::kFolder : impl_->IsOurs(status) ? Taken::kOurs : Taken::kFile;
  occupant->version = {impl_->folders.Shown(path), is_folder ? 0 : static_cast<std::uint64_t>(status.st_size),
                       status.st_mtim.tv_sec};
  return Success();
}

Result ExtractionFolder::MakeFolder(const std::string& path, const EntryAttributes& attributes) {
  Result result = CheckPath(path);
  if (!result.ok()) return result;
  FolderHandle folder;
  result = impl_->folders.Enter(path, true, &folder);
  if (result.ok() && attributes.write_time)
    impl_->folder_times.insert_or_assign(path, SystemTime(*attributes.write_time));
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
  if (result.ok()) result = impl_->Place(impl_->unfinished->folder(), *folder, path, replace);
  if (result.code == Code::kExists || result.code == Code::kIsFolder) return result;
  if (result.ok()) {
    impl_->unfinished->HasItsName();
    impl_->AddOurs(impl_->unfinished->status());
  }
  DiscardFile();
  return result;
}

void ExtractionFolder::DiscardFile() {
  impl_->unfinished.reset();
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
    if (result.path != impl_->folders.Shown(link.path)) result.reason = result.path + ": " + result.reason;
    result.path = link.path;
    failures.push_back(std::move(result));
  }
  // The deepest first. A time that cannot be set harms nobody.
  const auto folder_times = std::exchange(impl_->folder_times, {});
  for (auto entry = folder_times.rbegin(); entry != folder_times.rend(); ++entry) {
    FolderHandle parent;
    if (!impl_->folders.Enter(ParentOf(entry->first), false, &parent).ok()) continue;
    const timespec times[] = {{0, UTIME_OMIT}, entry->second};
    utimensat(parent->get(), NameOf(entry->first).c_str(), times, AT_SYMLINK_NOFOLLOW);
  }
  return failures;
}

}  // namespace quendle::platform
