// The process itself: the user's wish to stop it, the terminal it writes to.
#pragma once

#include <cstdint>

namespace quendle::platform {

// Opens what is closed of the three standard streams on nothing. Otherwise the next file to be opened,
// perhaps one of the user's, would become the stream that the program prints to. To be called first.
void OpenStandardStreams();

// From now on an interrupt, hang-up or termination request only sets a flag, so that the file operation in
// progress can be undone or finished first.
void CatchInterrupts();
bool InterruptRequested();

// What becomes readable then, for whoever waits: a file descriptor that nobody reads from; -1 where there is none.
std::intptr_t InterruptHandle();

// Columns of the terminal behind the error stream; 0 when it is no terminal.
int ErrorStreamColumns();

}  // namespace quendle::platform
