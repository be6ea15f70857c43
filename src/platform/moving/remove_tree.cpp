#include "platform/moving/remove_tree.h"

#include <vector>

namespace quendle::platform {
namespace {

constexpr std::uint64_t kLarge = 64U << 20;

class Remover {
 public:
  // Without a transfer nobody is asked and missing rights are taken. `volume` is the file system to stay on.
  Remover(Transfer* transfer, std::uint64_t volume) : transfer_(transfer), volume_(volume) {}

  Result Remove(const OpenFolder& folder, const std::string& name) {
    if (transfer_ != nullptr && !transfer_->meter.StartEntry(folder.Shown(name)))
      return Cancelled(folder.Shown(name));
    Result result = IsLarge(folder, name) ? folder.RemoveQuickly(name) : folder.Remove(name);
    if (result.code != Code::kIsFolder) return result;
    result = Empty(folder, name);
    return result.ok() ? folder.RemoveFolder(name) : result;
  }

 private:
  // Of what nobody waits for.
  bool IsLarge(const OpenFolder& folder, const std::string& name) const {
    EntryStatus status;
    return transfer_ == nullptr && folder.StatusOf(name, &status).ok() && !status.is_folder() &&
           status.size >= kLarge;
  }

  Result Empty(const OpenFolder& parent, const std::string& name) {
    if (transfer_ == nullptr) parent.MakeAccessible(name);
    OpenFolder folder;
    EntryStatus status;
    Result result = parent.Enter(name, OpenFolder::Use::kList, &folder);
    if (result.ok()) result = folder.Status(&status);
    if (!result.ok()) return result;
    if (status.id.volume != volume_) return Failure(Code::kRefused, parent.Shown(name), why::kMounted);
    std::vector<std::string> names;
    result = folder.List(&names);
    for (std::size_t i = 0; result.ok() && i < names.size(); ++i) result = Remove(folder, names[i]);
    return result;
  }

  Transfer* transfer_;
  std::uint64_t volume_;
};

}  // namespace

Result RemoveTree(Transfer& transfer, const std::string& path) {
  const std::string parent = FolderOf(path);
  OpenFolder folder;
  EntryStatus status;
  Result result = OpenFolder::Open(parent, parent, OpenFolder::Use::kPass, &folder);
  if (result.ok()) result = folder.Status(&status);
  return result.ok() ? Remover(&transfer, status.id.volume).Remove(folder, NameOf(path)) : result;
}

void DiscardTree(const OpenFolder& folder, const std::string& name) {
  EntryStatus top;
  if (folder.StatusOf(name, &top).ok()) (void)Remover(nullptr, top.id.volume).Remove(folder, name);
}

}  // namespace quendle::platform
