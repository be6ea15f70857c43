// The process itself: the user's wish to stop it, the terminal it writes to.
#pragma once

namespace quendle::platform {

// From now on an interrupt, hang-up or termination request only sets a flag, so that the file operation in
// progress can be undone or finished first.
void CatchInterrupts();
bool InterruptRequested();

bool IsErrorStreamTerminal();

}  // namespace quendle::platform
