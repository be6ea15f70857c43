// For builds without unarr, whose archives libarchive reads.
#include "archive/modules/common/unarr_reader.h"

namespace quendle::modules {

bool HasUnarr() {
  return false;
}

std::string AndUnarrVersion() {
  return "";
}

std::unique_ptr<EntryReader> OpenUnarr(const ArchiveInput&, UnarrFormat, DescribeUnarrEntry,
                                       std::string* reason) {
  *reason = "unarr is not part of this build";
  return nullptr;
}

}  // namespace quendle::modules
