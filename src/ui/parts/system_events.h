// What the toolkit does in another way on each system.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "reasons/reason.h"

class QObject;

namespace quendle {

// Why the toolkit cannot show windows here, although there is a display; empty when it can. One that tries and fails ends the
// process.
Reason MissingPlatform();

// The sound of a message with that icon: 16 critical, 32 question, 48 exclamation or 64 information. Windows: the one that the
// user has chosen for it; else the desktop's bell.
void SoundMessage(std::int32_t icon);

// Calls `act` whenever the handle (RunningCopy::WaitHandle, platform::InterruptHandle) says so, on the thread of the windows,
// until it answers false or `owner` goes. A handle of -1 never says anything.
void WhenReady(std::intptr_t handle, QObject* owner, std::function<bool()> act);

}  // namespace quendle
