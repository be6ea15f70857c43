#include "platform/folder_listing_posix.h"

#include <cerrno>
#include <memory>
#include <string_view>

#include <dirent.h>
#include <fcntl.h>

#include "platform/descriptor_posix.h"

namespace quendle::platform {
namespace {

struct ListingCloser {
  void operator()(DIR* listing) const { closedir(listing); }
};

}  // namespace

Result ListFolder(int folder, const std::string& shown, std::vector<std::string>* names) {
  const int own = fcntl(folder, F_DUPFD_CLOEXEC, 0);
  if (own < 0) return LastSystemFailure(shown);
  const std::unique_ptr<DIR, ListingCloser> listing(fdopendir(own));
  if (!listing) {
    Descriptor(own).Close();
    return LastSystemFailure(shown);
  }
  for (;;) {
    errno = 0;
    const dirent* entry = readdir(listing.get());
    if (entry == nullptr) return errno == 0 ? Success() : LastSystemFailure(shown);
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") names->emplace_back(name);
  }
}

}  // namespace quendle::platform
