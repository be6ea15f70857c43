// One path of an unattended run: what matches it, which profile it gets, and what becomes of it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/clsMover.h"

namespace quendle {

enum class Outcome {
  kPlanned,
  kDone,
  kFailed,
  kAmbiguous,  // several profiles match and none was named
  kUnmatched,  // no profile matches
  kMissing,    // there is no such file or folder
};

struct DispatchReport {
  std::string path;
  std::string name;
  std::int16_t archive_type = 0;
  std::vector<std::string> matches;    // titles of the profiles that match
  std::optional<std::string> profile;  // the title of the one that was taken
  std::vector<ActionStep> steps;
  Outcome outcome = Outcome::kFailed;
  Reason error;  // empty unless something failed or was left undone
};

struct DispatchOptions {
  bool dry_run = false;
  std::optional<std::string> profile;  // taken for every path, whether its pattern matches or not
};

// Does, or plans, the path at `mover`.CMDLINECURRENT.
DispatchReport DispatchCurrent(clsMover* mover, const clsFileInfo& file_info, const DispatchOptions& options);

}  // namespace quendle
