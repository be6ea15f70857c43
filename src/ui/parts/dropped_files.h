// Files that are dropped on a window.
#pragma once

#include <string>
#include <vector>

class QMimeData;

namespace quendle {

// The paths of what is dropped, as bytes of the file system. Empty unless all of it lies on this computer.
std::vector<std::string> DroppedPaths(const QMimeData& data);

}  // namespace quendle
