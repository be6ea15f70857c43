#include "platform/moving/copy_tree.h"
#include "platform/process/system_failure.h"

#include <unordered_map>

#include "platform/moving/copy_file.h"

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
      if (tree_.entries()[i].status.is_folder()) result = CopyChildren(i);
    }
    // Only now that nothing is added any more; deepest first, while the folders above can still be entered.
    for (std::size_t i = count; result.ok() && i-- > 0;) {
      if (tree_.entries()[i].status.is_folder()) result = FinishFolder(i);
    }
    return result;
  }

 private:
  struct FolderPair {
    OpenFolder from;
    OpenFolder to;
  };

  Result OpenPair(std::size_t index, FolderPair* pair) {
    Result result = tree_.Enter(index, &pair->from);
    if (!result.ok()) return result;
    return OpenFolder::OpenItself(tree_.PathBelow(staging_, index), tree_.PathBelow(destination_, index),
                                  OpenFolder::Use::kList, &pair->to);
  }

  Result CopyChildren(std::size_t index) {
    FolderPair pair;
    Result result = OpenPair(index, &pair);
    const TreeEntry& folder = tree_.entries()[index];
    for (std::size_t i = folder.children_begin; result.ok() && i < folder.children_end; ++i) {
      const std::string& name = tree_.entries()[i].name;
      result = CopyChild(i, pair, pair.from.Shown(name), pair.to.Shown(name));
    }
    return result;
  }

  Result CopyChild(std::size_t index, const FolderPair& pair, const std::string& from,
                   const std::string& to) {
    if (!transfer_.meter.StartEntry(from)) return Cancelled(from);
    const TreeEntry& entry = tree_.entries()[index];
    if (entry.status.is_folder()) return pair.to.MakeFolder(entry.name, {.is_private = true});
    if (entry.status.links > 1 && LinkToEarlierCopy(index, pair.to))
      return transfer_.meter.AddBytes(entry.status.size) ? Success() : Cancelled(from);
    return entry.status.is_link() ? CopyLink(entry, pair, to) : CopyFile(entry, pair, from, to);
  }

  // False when this is the first name of the file, or the file system has no hard links: then it is copied.
  bool LinkToEarlierCopy(std::size_t index, const OpenFolder& folder) {
    const TreeEntry& entry = tree_.entries()[index];
    const auto [first, is_new] = first_names_.try_emplace(entry.status.id, index);
    if (is_new) return false;
    return folder.MakeHardLink(tree_.PathBelow(staging_, first->second), entry.name).ok();
  }

  Result CopyLink(const TreeEntry& entry, const FolderPair& pair, const std::string& to) {
    std::string content;
    Result result = pair.from.ReadLink(entry.name, entry.status, &content);
    if (result.ok()) result = pair.to.MakeLinkLike(entry.name, content, entry.status);
    return result.ok() ? CopyLinkMetadata(transfer_, entry.status, pair.to, entry.name, to) : result;
  }

  Result CopyFile(const TreeEntry& entry, const FolderPair& pair, const std::string& from,
                  const std::string& to) {
    SystemHandle in;
    SystemHandle out;
    Result result = pair.from.OpenFile(entry.name, &in);
    if (result.ok()) result = pair.to.MakeFile(entry.name, {.is_private = true}, &out);
    if (result.ok())
      result = CopyFileContent(transfer_, {in.get(), from}, entry.status, {out.get(), to}, false);
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
  std::unordered_map<EntryId, std::size_t, EntryIdHash> first_names_;  // of files with several
};

}  // namespace

Result CopyTree(Transfer& transfer, const SourceTree& tree, const std::string& staging,
                const std::string& destination) {
  // Opened before the mode is copied, which may not let anyone in.
  OpenFolder top;
  Result result = OpenFolder::OpenItself(staging, destination, OpenFolder::Use::kList, &top);
  if (result.ok()) result = TreeCopy(transfer, tree, staging, destination).Run();
  return result.ok() && transfer.moving ? SyncCopies({top.get(), destination}) : result;
}

}  // namespace quendle::platform
