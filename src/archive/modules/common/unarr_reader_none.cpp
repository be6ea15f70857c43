// For builds without unarr, whose archives libarchive reads.
#include "archive/modules/common/unarr_reader.h"

namespace quendle::modules {

bool HasUnarr() {
  return false;
}

std::string AndUnarrVersion() {
  return "";
}

std::unique_ptr<EntryReader> OpenUnarr(const ArchiveInput&, DescribeUnarrEntry, Reason* reason) {
  *reason = why::kNoUnarr;
  return nullptr;
}

}  // namespace quendle::modules
