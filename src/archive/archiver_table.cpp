#include "archive/archiver_table.h"

#include <algorithm>

#include "base/modString.h"
#include "base/modSystem.h"

namespace quendle {
namespace {

constexpr auto kWord = CommandPart::Place::kWord;
constexpr auto kSwitches = CommandPart::Place::kSwitches;
constexpr auto kAlways = CommandPart::When::kAlways;
constexpr auto kOn = CommandPart::When::kOn;
constexpr auto kOff = CommandPart::When::kOff;

constexpr CommandPart kZipParts[] = {
    {kWord, kAlways, kAlways, 1, "-x"},           {kWord, kAlways, kAlways, 2, "-u"},
    {kSwitches, kAlways, kAlways, 0, "-s -i -C"}, {kSwitches, kOn, kAlways, 0, " -j"},
    {kSwitches, kAlways, kOff, 0, " -o"},
};
constexpr CommandPart kLzhParts[] = {
    {kWord, kAlways, kAlways, 0, "x"},         {kSwitches, kAlways, kAlways, 0, "-+ -a1 -jp1"},
    {kSwitches, kOn, kAlways, 0, " -x0"},      {kSwitches, kOff, kAlways, 0, " -x1"},
    {kSwitches, kAlways, kOn, 0, " -c1 -m0"},  {kSwitches, kAlways, kOff, 1, " -c1 -m1"},
    {kSwitches, kAlways, kOff, 2, " -c0 -m1"},
};
constexpr CommandPart kCabParts[] = {
    {kWord, kAlways, kAlways, 0, "-x"},
    {kSwitches, kOn, kAlways, 0, "-j"},
    {kSwitches, kAlways, kOff, 1, " -o"},
    {kSwitches, kAlways, kOff, 2, " -n"},
};
constexpr CommandPart kRarParts[] = {
    {kWord, kOn, kAlways, 0, "-e"},
    {kWord, kOff, kAlways, 0, "-x"},
    {kSwitches, kAlways, kOff, 1, " -o"},
    {kSwitches, kAlways, kOff, 2, " -u"},
};
constexpr CommandPart kSevenZipParts[] = {
    {kWord, kOn, kAlways, 0, "e"},
    {kWord, kOff, kAlways, 0, "x"},
    {kSwitches, kAlways, kOff, 0, " -aoa"},
};

constexpr ArchiverRow kRows[] = {
    {1, FolderPlace::kArgument, 1, "ZIP", "UnZIP32", "UnZip", kZipParts},
    {2, FolderPlace::kArgument, 2, "LZH", "UnLHA32", "Unlha", kLzhParts},
    {3, FolderPlace::kArgument, 0, "CAB", "Cab32", "Cab", kCabParts},
    {4, FolderPlace::kArgument, 1, "RAR", "unrar32", "Unrar", kRarParts},
    {5, FolderPlace::kSwitch, 0, "7Z", "7-zip32", "SevenZip", kSevenZipParts},
};

bool Holds(CommandPart::When when, bool value) {
  return when == kAlways || (when == kOn) == value;
}

std::string Joined(const ArchiverRow& row, CommandPart::Place place, const CommandOptions& options) {
  std::string text;
  for (const CommandPart& part : row.parts) {
    const bool fits_mode = part.mode == 0 || part.mode == options.mode;
    if (part.place == place && fits_mode && Holds(part.flat, options.flat) &&
        Holds(part.confirm, options.confirm)) {
      text += part.text;
    }
  }
  return text;
}

}  // namespace

std::span<const ArchiverRow> ArchiverRows() {
  return kRows;
}

const ArchiverRow& ArchiverRowOf(std::int16_t type) {
  for (const ArchiverRow& row : kRows) {
    if (row.type == type) return row;
  }
  ProgrammingError("archive type outside 1 to 5");
}

bool CanUpdate(const ArchiverRow& row) {
  return std::any_of(row.parts.begin(), row.parts.end(),
                     [](const CommandPart& part) { return part.mode == 2; });
}

std::string CommandLine(const ArchiverRow& row, const CommandOptions& options, const std::string& archive,
                        const std::string& folder, const std::string& response_file) {
  const std::string word = Joined(row, kWord, options);
  const std::string switches = Joined(row, kSwitches, options).append(" ").append(AddQuotes(archive));
  const std::string list = AddQuotes("@" + response_file);
  if (row.folder_place == FolderPlace::kSwitch) {
    return word + " \"-o" + folder + "\"" + switches + " " + list;
  }
  return word + " " + switches + " " + AddQuotes(AddBackslash(folder)) + " " + list;
}

}  // namespace quendle
