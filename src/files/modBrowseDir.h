// Where a folder picker begins.
#pragma once

#include <string>

namespace quendle {

// The nearest existing folder at or above the proposed one, with a separator behind it. Empty when there is none above
// which a root, a drive or a share stands.
//   /home/a/b/c of which /home/a exists => /home/a/
//   Q:\a\b, and no drive Q              => nothing
std::string PickerStartFolder(const std::string& proposed);

}  // namespace quendle
