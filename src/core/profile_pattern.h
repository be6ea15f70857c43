// Proposing a pattern for a file.
#pragma once

#include "files/clsFileInfo.h"

namespace quendle {

// A pattern for the target and its numbered siblings; characters of the name that mean something in a pattern
// are left as they are.
//   abc_01.zip => abc_.*\.zip    data123.lzh => data.*\.lzh    README => README.*    12345.zip => 1.*\.zip
std::string MakePatternFromTarget(const clsFileInfo& target);

}  // namespace quendle
