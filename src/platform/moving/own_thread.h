// Work on a thread of its own, so that whoever waits for it can look after something else however long the system
// takes over a single step.
#pragma once

#include <functional>

#include "platform/moving/file_operation.h"

namespace quendle::platform {

using ObservedWork = std::function<Result(FileOperationObserver* observer)>;

// Does the work on another thread, which ends before this returns. What that reports and asks reaches `observer` on
// the calling thread, with the work waiting for the answer; in between, `observer` is told every 20 milliseconds what
// it was told last. Once it has cancelled, every report is answered with a cancel, and every question. An exception of
// the observer cancels the work, and std::exit in it waits for the end of the work, too.
Result DoOnOwnThread(FileOperationObserver* observer, const ObservedWork& work);

}  // namespace quendle::platform
