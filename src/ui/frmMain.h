// The list of profiles.
#pragma once

#include "core/windows.h"

namespace quendle {

// Shows it until the user closes it.
void RunProfileList(const WindowsHost& host);

}  // namespace quendle
