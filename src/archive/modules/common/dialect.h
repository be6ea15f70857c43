// The command lines of the families. They differ in words only: each asks for the same few things.
#pragma once

#include <string>
#include <string_view>

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

// One row: how a family says it.
struct Dialect;

extern const Dialect kZipDialect, kLzhDialect, kCabDialect, kRarDialect, kSevenZipDialect;

// Reads a command line. False, with `*problem` in one English line, for one that is not of the dialect, lacks
// the archive or the folder, or has a switch that the dialect does not know: what is not understood is not
// done.
//
// A word is in double quotes or without blanks; a quote only ends a word when a blank or the end follows it.
//   ZIP  -x -s -i -C -j -o "/a.zip" "/out/" "@/tmp/r"  => /a.zip into /out by /tmp/r, no paths, replace
//   7Z   x "-o/out" -aoa "/a.7z" "@/tmp/r"             => /a.7z into /out by /tmp/r, paths, replace
bool ParseCommandLine(const Dialect& dialect, std::string_view line, Request* request, std::string* problem);

}  // namespace quendle::modules
