#include "platform/copy_tree_posix.h"

#include <cerrno>
#include <map>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

#include "platform/copy_file_posix.h"
#include "platform/descriptor_posix.h"
#include "platform/entry_names_posix.h"

namespace quendle::platform {
namespace {

class TreeCopy {
 public:
  TreeCopy(Transfer& transfer, const SourceTree& tree, const std::string& staging,
           const std::string& destination)
      : transfer_(transfer), tree_(tree), staging_(staging), destination_(destination) {}

  Result Run() {
    Result result;
    const std::size_t count = tree_.entries().size();
    for (std::size_t i = 0; result.ok() && i < count; ++i) {
      if (S_ISDIR(tree_.entries()[i].status.st_mode)) result = CopyChildren(i);
    }
    // Only now that nothing is added any more; deepest first, while the folders above can still be entered.
    for (std::size_t i = count; result.ok() && i-- > 0;) {
      if (S_ISDIR(tree_.entries()[i].status.st_mode)) result = FinishFolder(i);
    }
    return result;
  }

 private:
  struct FolderPair {
    Descriptor from;
    Descriptor to;
  };

  Result OpenPair(std::size_t index, FolderPair* pair) {
    Result result = tree_.OpenFolder(index, &pair->from);
    if (!result.ok()) return result;
    const std::string path = tree_.PathBelow(staging_, index);
    pair->to = Descriptor(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    return pair->to.ok() ? Success() : LastSystemFailure(tree_.PathBelow(destination_, index));
  }

  Result CopyChildren(std::size_t index) {
    FolderPair pair;
    Result result = OpenPair(index, &pair);
    const std::string from = tree_.Path(index) + "/";
    const std::string to = tree_.PathBelow(destination_, index) + "/";
    const TreeEntry& folder = tree_.entries()[index];
    for (std::size_t i = folder.children_begin; result.ok() && i < folder.children_end; ++i) {
      const std::string& name = tree_.entries()[i].name;
      result = CopyChild(i, pair, from + name, to + name);
    }
    return result;
  }

  Result CopyChild(std::size_t index, const FolderPair& pair, const std::string& from,
                   const std::string& to) {
    if (!transfer_.meter.StartEntry(from)) return Cancelled(from);
    const TreeEntry& entry = tree_.entries()[index];
    if (S_ISDIR(entry.status.st_mode)) {
      return mkdirat(pair.to.get(), entry.name.c_str(), S_IRWXU) == 0 ? Success() : LastSystemFailure(to);
    }
    if (entry.status.st_nlink > 1 && LinkToEarlierCopy(index, pair.to.get())) {
      return transfer_.meter.AddBytes(static_cast<std::uint64_t>(entry.status.st_size)) ? Success()
                                                                                        : Cancelled(from);
    }
    return S_ISLNK(entry.status.st_mode) ? CopyLink(entry, pair, from, to) : CopyFile(entry, pair, from, to);
  }

  // False when this is the first name of the file, or the file system has no hard links: then it is copied.
  bool LinkToEarlierCopy(std::size_t index, int folder) {
    const TreeEntry& entry = tree_.entries()[index];
    const auto [first, is_new] = first_names_.try_emplace({entry.status.st_dev, entry.status.st_ino}, index);
    if (is_new) return false;
    const std::string earlier = tree_.PathBelow(staging_, first->second);
    return linkat(AT_FDCWD, earlier.c_str(), folder, entry.name.c_str(), 0) == 0;
  }

  Result CopyLink(const TreeEntry& entry, const FolderPair& pair, const std::string& from,
                  const std::string& to) {
    const char* name = entry.name.c_str();
    std::string target;
    Result result = ReadLink(pair.from.get(), name, from, entry.status, &target);
    if (!result.ok()) return result;
    if (symlinkat(target.c_str(), pair.to.get(), name) != 0) return LastSystemFailure(to);
    return CopyLinkMetadata(transfer_, entry.status, pair.to.get(), name, to);
  }

  Result CopyFile(const TreeEntry& entry, const FolderPair& pair, const std::string& from,
                  const std::string& to) {
    const char* name = entry.name.c_str();
    const Descriptor in(openat(pair.from.get(), name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!in.ok()) return LastSystemFailure(from);
    Descriptor out(openat(pair.to.get(), name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!out.ok()) return LastSystemFailure(to);
    Result result = CopyFileContent(transfer_, {in.get(), from}, entry.status, {out.get(), to}, false);
    if (result.ok() && !out.Close()) return LastSystemFailure(to);
    return result;
  }

  Result FinishFolder(std::size_t index) {
    FolderPair pair;
    Result result = OpenPair(index, &pair);
    if (!result.ok()) return result;
    const std::string from = tree_.Path(index);
    const std::string to = tree_.PathBelow(destination_, index);
    return CopyMetadata(transfer_, {pair.from.get(), from}, tree_.entries()[index].status,
                        {pair.to.get(), to});
  }

  Transfer& transfer_;
  const SourceTree& tree_;
  const std::string& staging_;
  const std::string& destination_;
  std::map<std::pair<dev_t, ino_t>, std::size_t> first_names_;  // of files with several
};

}  // namespace

Result CopyTree(Transfer& transfer, const SourceTree& tree, const std::string& staging,
                const std::string& destination) {
  // Opened before the mode is copied, which may not let anyone in.
  const Descriptor top(open(staging.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  if (!top.ok()) return LastSystemFailure(destination);
  Result result = TreeCopy(transfer, tree, staging, destination).Run();
  // Once for everything: a sync of each file would take minutes for thousands of them.
  if (result.ok() && transfer.moving && syncfs(top.get()) != 0) return LastSystemFailure(destination);
  return result;
}

}  // namespace quendle::platform
