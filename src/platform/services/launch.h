// Starting other programs and leaving them to themselves.
#pragma once

#include <string>
#include <vector>

#include "reasons/result.h"

namespace quendle::platform {

// Starts `arguments` (the first is the program's full path) detached from this process, in the root folder,
// with nothing on its standard streams, never through a shell. A program that cannot be started is a failure;
// what it does afterwards is not known. Windows: a program of the terminal gets one of its own; batch files are refused,
// because only a shell can run them.
Result StartProgram(const std::vector<std::string>& arguments);

// Starts the program at that full path with parameters as a user writes them: see platform/services/launch_words.h. Windows,
// where each program takes its command line apart by itself: they are passed as they are written, but "%1" is `value`, in
// quotes where it needs them.
Result StartProgramFor(const std::string& program, const std::string& parameters, const std::string& value);

// Opens a file or folder, by its absolute path, with the desktop's handler for it. The handler's starter is
// looked for on the executable search path, never in `untrusted_folder` or below it, nor in the current
// folder. Windows: the starter is the system's own; a program is started.
Result OpenWithDesktop(const std::string& path, const std::string& untrusted_folder);

}  // namespace quendle::platform
