// The user interface of a run with windows.
#pragma once

#include <memory>

#include "base/user_interface.h"
#include "core/windows.h"

namespace quendle {

std::unique_ptr<UserInterface> MakeQtUser(const WindowsHost& host);

}  // namespace quendle
