// The families of archives and their libraries. What distinguishes one family from another for this program is
// all in these rows.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace quendle {

// A piece of a command word or of its switches, and when it belongs there.
struct CommandPart {
  enum class When : std::uint8_t { kAlways, kOn, kOff };
  enum class Place : std::uint8_t { kWord, kSwitches };

  Place place;
  When flat;          // extraction without stored paths
  When confirm;       // asking before overwriting
  std::int16_t mode;  // 1 overwrite, 2 update, 0 either
  const char* text;
};

// Where a command line names the folder to extract into.
enum class FolderPlace : std::uint8_t {
  kArgument,  // behind the switches and the archive
  kSwitch,    // in a switch "-o" before them
};

struct ArchiverRow {
  std::int16_t type;
  FolderPlace folder_place;
  int header_lines;                    // of its log, left out where several logs are joined
  const char* name;                    // shown for the type
  const char* library;                 // the library's file without the system's suffix
  const char* prefix;                  // of its functions
  std::span<const CommandPart> parts;  // in the order in which they are joined
};

// In ascending order of type, which is also the order in which a file is offered to the libraries.
std::span<const ArchiverRow> ArchiverRows();

// A type outside 1 to 5 is a programming error.
const ArchiverRow& ArchiverRowOf(std::int16_t type);

// Can the row's library be told to leave files alone that are not older? Else it replaces them.
bool CanUpdate(const ArchiverRow& row);

struct CommandOptions {
  bool flat = false;
  bool confirm = false;
  std::int16_t mode = 1;
};

// The command line by which the row's library extracts the entries that `response_file` names into `folder`
// (without a separator at its end). None of the paths has a double quote in it.
//   7Z, flat: e "-o/out" -aoa "/a.7z" "@/tmp/r"    CAB, confirm: -x  "/a.cab" "/out/" "@/tmp/r"
std::string CommandLine(const ArchiverRow& row, const CommandOptions& options, const std::string& archive,
                        const std::string& folder, const std::string& response_file);

}  // namespace quendle
