#include "platform/remove_tree_posix.h"

#include <cerrno>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/descriptor_posix.h"
#include "platform/entry_names_posix.h"
#include "platform/folder_listing_posix.h"

namespace quendle::platform {
namespace {

class Remover {
 public:
  // Without a transfer nobody is asked and missing rights are taken. `device` is the file system to stay on.
  Remover(Transfer* transfer, dev_t device) : transfer_(transfer), device_(device) {}

  Result Remove(int folder, const std::string& name, const std::string& shown) {
    if (transfer_ != nullptr && !transfer_->meter.StartEntry(shown)) return Cancelled(shown);
    if (unlinkat(folder, name.c_str(), 0) == 0) return Success();
    if (errno != EISDIR) return LastSystemFailure(shown);
    Result result = Empty(folder, name, shown);
    if (!result.ok()) return result;
    return unlinkat(folder, name.c_str(), AT_REMOVEDIR) == 0 ? Success() : LastSystemFailure(shown);
  }

 private:
  Result Empty(int parent, const std::string& name, const std::string& shown) {
    if (transfer_ == nullptr) fchmodat(parent, name.c_str(), S_IRWXU, 0);
    const Descriptor folder(openat(parent, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status;
    if (!folder.ok() || fstat(folder.get(), &status) != 0) return LastSystemFailure(shown);
    if (status.st_dev != device_)
      return Failure(Code::kRefused, shown, "another file system is mounted here");
    std::vector<std::string> names;
    Result result = ListFolder(folder.get(), shown, &names);
    for (std::size_t i = 0; result.ok() && i < names.size(); ++i) {
      result = Remove(folder.get(), names[i], shown + "/" + names[i]);
    }
    return result;
  }

  Transfer* transfer_;
  dev_t device_;
};

}  // namespace

Result RemoveTree(Transfer& transfer, const std::string& path) {
  struct stat parent;
  if (stat(FolderOf(path).c_str(), &parent) != 0) return LastSystemFailure(path);
  return Remover(&transfer, parent.st_dev).Remove(AT_FDCWD, path, path);
}

void DiscardTree(const std::string& path) {
  struct stat top;
  if (lstat(path.c_str(), &top) == 0) (void)Remover(nullptr, top.st_dev).Remove(AT_FDCWD, path, path);
}

}  // namespace quendle::platform
