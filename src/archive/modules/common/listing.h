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
  std::string problem;          // why there may be more than the entries; empty: these are all
};

// Finds, opens and lists the archive at `path`. The last one listed is remembered while its files are
// unchanged, since an extraction follows a listing. Null, with the reason, when nothing of it can be listed.
// `ask_password` as in ReaderOptions.
std::shared_ptr<const OpenedArchive> OpenArchive(const Family& family, const std::string& path,
                                                 const ReaderOptions& options, std::string* reason);

}  // namespace quendle::modules
