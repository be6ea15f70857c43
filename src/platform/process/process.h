// The process itself: the user's wish to stop it, the terminal it writes to.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quendle::platform {

// To be called first. Where the system would look for libraries in the current folder, or ask the user about an empty
// drive by a box of its own, it no longer does.
void SecureProcess();

// Opens what is closed of the three standard streams on nothing. Otherwise the next file to be opened,
// perhaps one of the user's, would become the stream that the program prints to. To be called before any file is opened.
//
// Windows: on the console of the shell that the program was started from, when there is one. The streams take UTF-8 and
// change no byte. The error stream is buffered, too: who writes to it flushes it.
void OpenStandardStreams();

// The words of the command line in UTF-8 (POSIX: as bytes), the name of the program first, from what main() was given.
// Windows: quotes only hold blanks together, and no backslash changes that.
std::vector<std::string> ProgramArguments(int argc, char** argv);

// An environment variable; an empty one counts as missing.
std::optional<std::string> EnvironmentVariable(const char* name);

// From now on an interrupt, hang-up or termination request only sets a flag, so that the file operation in
// progress can be undone or finished first. Windows: Ctrl+C and closing the console, after which the system waits for
// some seconds.
void CatchInterrupts();
bool InterruptRequested();

// What becomes readable then, for whoever waits: a file descriptor that nobody reads from; -1 where there is none.
// Windows: the HANDLE of an event that is set then and stays so.
std::intptr_t InterruptHandle();

// Columns of the terminal behind the error stream; 0 when it is no terminal, or
// one that does not understand escape sequences.
int ErrorStreamColumns();

}  // namespace quendle::platform
