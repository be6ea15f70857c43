// What the parts of clsArchiver share.
#pragma once

#include <string>
#include <vector>

#include "archive/archive_session.h"
#include "archive/clsArchiver.h"
#include "archive/existing_files.h"
#include "archive/extraction_list.h"
#include "archive/extraction_run.h"
#include "platform/entries/entry_path.h"

namespace quendle {

// An archive on its way from the list of its entries to the folders.
struct clsArchiver::Work {
  const ArchiverRow& row;
  const ArchiverLibrary& library;
  std::string destination;
  bool flat;
  ExtractionReport* report;
  ArchiveSession session;
  std::vector<std::string> names = {};
  std::vector<ExtractionGroup> groups = {};
  // Of their names, group by group: for certain nothing is where the entry goes.
  std::vector<bool> is_free = {};
  EntryTimes times = {};  // where they count
  ExistingFiles existing = {};

  // Where an entry with a safe name goes below the destination, with "/" between the parts.
  std::string PathOf(const std::string& name, const ExtractionGroup& group) const {
    std::string path;
    (void)platform::SafeEntryPath(name, platform::kHostNames, &path);
    if (!flat) return path;
    path.erase(0, path.rfind('/') + 1);
    return group.sub_folder.empty() ? path : group.sub_folder + "/" + path;
  }

  // The full path that an entry of the group goes to.
  std::string PlaceOf(const std::string& name, const ExtractionGroup& group) const {
    return OutputFolder(destination, PathOf(name, group));
  }
};

}  // namespace quendle
