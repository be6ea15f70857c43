// The command lines of the families. They differ in words only: each asks for the same few things.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "reasons/reason.h"

namespace quendle::modules {

enum class Existing {
  kAsk,      // ask before a file is replaced
  kReplace,  // replace
  kUpdate,   // replace what is older, leave the rest
};

struct Request {
  std::string archive;
  std::string folder;         // without a separator at its end, but for a root
  std::string response_file;  // empty: every entry
  bool with_paths = true;     // false: only the last part of each entry's name, right in the folder
  Existing existing = Existing::kAsk;
};

// A command or switch and what it says. Nothing is asked only when kQuiet is said.
struct DialectWord {
  static constexpr unsigned kCommand = 1;
  static constexpr unsigned kNoPaths = 2;
  static constexpr unsigned kQuiet = 4;
  static constexpr unsigned kUpdate = 8;

  std::string_view text;
  unsigned meaning;
};

struct Dialect {
  std::vector<DialectWord> words;
  bool needs_command;
  bool folder_is_switch;    // "-oFOLDER" in quotes in place of a second path
  unsigned log_head_lines;  // that the log of a call begins with
};

extern const Dialect kZipDialect;
extern const Dialect kLzhDialect;
extern const Dialect kCabDialect;
extern const Dialect kRarDialect;
extern const Dialect kSevenZipDialect;

// Reads a command line. False, with `*problem`, for one that is not of the dialect, lacks the archive or the folder,
// or has a word that the dialect does not know: what is not understood is not done.
//
// A word is in double quotes or without blanks; a quote only ends a word when a blank or the end follows it.
//   ZIP  -x -s -i -C -j -o "/a.zip" "/out/" "@/tmp/r"  => /a.zip into /out by /tmp/r, no paths, replace
//   7Z   x "-o/out" -aoa "/a.7z" "@/tmp/r"             => /a.7z into /out by /tmp/r, paths, replace
bool ParseCommandLine(const Dialect& dialect, std::string_view line, Request* request, Reason* problem);

}  // namespace quendle::modules
