// What symbolic links and junctions consist of.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/text/wide_win32.h"

namespace quendle::platform {

// The record that the file system keeps of the open link. 0 or an error as GetLastError has them.
DWORD ReadLinkRecord(HANDLE link, std::string* record);

// Where a symbolic link leads, as its maker wrote it; none for other links.
std::optional<std::wstring> SymbolicTarget(std::string_view record);

}  // namespace quendle::platform
