// What is in an archive.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "archive/modules/common/family.h"

namespace quendle::modules {

struct OpenedArchive {
  ArchiveInput input;
  std::vector<Engine> engines;  // best first: the one that listed it is the first
  std::vector<Entry> entries;   // in archive order
  Reason problem;               // why there may be more than the entries; empty: these are all
};

// Lists what `input` holds with the first of the family's engines that can do it to the end, or else with the
// one that comes farthest. Null, with the reason, when the archive is refused or nothing of it can be listed.
std::unique_ptr<OpenedArchive> ListArchive(const Family& family, const ArchiveInput& input,
                                           const ReaderOptions& options, Reason* reason);

}  // namespace quendle::modules
