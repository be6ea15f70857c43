// The mark that Windows gives to files from the internet, so that it asks before they are run. There is none
// elsewhere.
#pragma once

#include <string>

#include "platform/entries/open_folder.h"

namespace quendle::platform {

// Empty when the file has none.
std::string ReadOriginMark(const std::string& path);

// Gives the mark to a file, whose time stays. A file system that has no place for it is none to complain
// about.
void WriteOriginMark(const OpenFolder& folder, const std::string& name, const std::string& mark);

}  // namespace quendle::platform
