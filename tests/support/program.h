// The built program, run by the shell.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

#ifndef _WIN32
#include <sys/wait.h>
#endif

#include "support/scoped_variable.h"
#include "support/temp_folder.h"

namespace quendle::test {

struct Ended {
  int status;
  std::string out;
  std::string err;
};

// From the root on, since the shell is elsewhere.
inline std::string BuiltProgram() {
  return TextOf(fs::absolute(QUENDLE_PROGRAM).make_preferred());
}

// Runs it in `folder`, with the settings in folder/s, nothing to read and, on POSIX, no display. `arguments` go to the
// shell as they stand; both systems' take double quotes.
inline Ended RunProgram(const TempFolder& folder, const std::string& arguments,
                        const std::string& program = BuiltProgram()) {
  const ScopedVariable settings("QUENDLE_HOME", folder / "s");
  const std::string command =
      " \"" + folder.path() + "\" && \"" + program + "\" " + arguments + " >out 2>err <";
#ifdef _WIN32
  // It takes the outer quotes off.
  const int status = _wsystem(FsPath("\"cd /d" + command + "NUL\"").c_str());
#else
  const std::string hidden = "unset DISPLAY WAYLAND_DISPLAY QT_QPA_PLATFORM; cd" + command + "/dev/null";
  const int status = WEXITSTATUS(std::system(hidden.c_str()));
#endif
  return {status, ReadFile(folder / "out"), ReadFile(folder / "err")};
}

// What is to be moved goes to folder/m.
inline void WriteSettings(const TempFolder& folder, const std::string& items) {
  WriteFile(folder / "s/mover.ini", "[General]\r\nMoveTo=" + folder / "m" + "\r\n");
  WriteFile(folder / "s/items.ini", items);
}

}  // namespace quendle::test
