// The user interface of a run with windows.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "base/user_interface.h"
#include "core/windows_library.h"

namespace quendle {

// `now` is the clock by which progress is shown.
std::unique_ptr<UserInterface> MakeQtUser(
    const WindowsHost& host,
    std::function<std::chrono::steady_clock::time_point()> now = std::chrono::steady_clock::now);

}  // namespace quendle
