// Work on threads of its own, so that whoever waits for it can look after something else however long the system takes
// over a single step.
#pragma once

#include <functional>

#include "platform/moving/file_operation.h"

namespace quendle::platform {

using ObservedWork = std::function<Result(FileOperationObserver* observer)>;
using SharedWork = std::function<void(FileOperationObserver* observer)>;

// Does the work on another thread, which ends before this returns. What that reports and asks reaches `observer` on
// the calling thread, with the work waiting for the answer; in between, `observer` is told every 20 milliseconds what
// it was told last, or of an empty path before the first report. Once it has cancelled, every report is answered with a
// cancel, and every question. An exception of the observer cancels the work, and std::exit in it waits for the end of
// the work, too. Where the system has no thread to give, the calling one does the work, and std::exit ends nothing.
Result DoOnOwnThread(FileOperationObserver* observer, const ObservedWork& work);

// The same with the work done by up to `count` threads at once, which share it out among themselves. Where the system
// has no more threads to give, fewer do it, or the calling one. Of std::exit whoever looks after the calling thread
// takes care.
void DoOnThreads(unsigned count, FileOperationObserver* observer, const SharedWork& work);

}  // namespace quendle::platform
