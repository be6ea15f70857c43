// Archives in several files.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "archive/modules/common/archive_input.h"

namespace quendle::modules {

// The files of the set that the file belongs to by its name, first to last:
//   a.part1.rar, a.part2.rar, ...     a.part01.rar, ...     a.rar, a.r00, a.r01, ... a.r99, a.s00, ...
//   a.7z.001, a.7z.002, ...           a.zip.001, ...        a.z01, a.z02, ..., a.zip (the last, which is given)
// The first of the .rar ones may be a program, a.part1.exe or a.sfx. Of a file that is given `is_program` says whether it is
// one: most programs belong to no set.
//
// Names are found in any case. A file that belongs to no set is a set of its own. Whether the set is complete
// only the format knows; a gap in the numbering ends it.
struct VolumeSet {
  std::vector<std::shared_ptr<const platform::InputFile>> files;
  bool is_first = true;    // the file given is the one to be opened (of a .z01 set the .zip)
  std::string first_path;  // the path of that one otherwise
  // The name that the set lacks: behind its last file, in its gap, or of the one to be opened.
  std::string missing_path;
};
VolumeSet FindVolumes(std::shared_ptr<const platform::InputFile> file, bool is_program = false);

}  // namespace quendle::modules
