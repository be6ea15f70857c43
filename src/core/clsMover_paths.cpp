// Destination paths and smart rename.
#include <cstdio>

#include "base/modString.h"
#include "base/modSystem.h"
#include "core/clsMover.h"
#include "platform/entries/entry_status.h"

namespace quendle {

std::string clsMover::GetTargetPathByFolder(StepKind kind, const std::string& written) const {
  std::string folder = PlainPath(written);
  if (kind == StepKind::kExtract || DOESFOLDER) return folder;
  CheckAction();
  const std::string& name = environment_.file_info.pFileNameLong();
  const bool copies_and_moves = Includes(ACTION, StepKind::kCopy) && Includes(ACTION, StepKind::kMove);
  if (copies_and_moves || Includes(ACTION, StepKind::kExtract)) {
    // With other steps around it, a destination that is the file itself means that the file stays.
    std::string plain = AddBackslash(folder) + name;
    if (platform::EntryStatus there; platform::ReadStatus(plain, &there).ok() && IsTarget(there))
      return plain;
  }
  return GetFilenameBySmartRename(folder, name);
}

void clsMover::CheckAction() const {
  if (ACTION < kNoSteps || ACTION > kAllSteps) ProgrammingError("action code outside 0 to 7");
}

// Whether /in and /IN are one folder is for the file system to say.
bool clsMover::IsTarget(const platform::EntryStatus& entry) const {
  platform::EntryStatus target;
  return platform::ReadStatus(ORIGINALPATH, &target).ok() && IsSameEntry(entry, target);
}

std::string clsMover::GetFilenameBySmartRename(const std::string& folder, const std::string& name) const {
  if (SMARTRENAME < 1 || SMARTRENAME > 3) ProgrammingError("rename mode outside 1 to 3");
  const std::string prefix = AddBackslash(folder);
  std::string plain = prefix + name;
  if (SMARTRENAME == 1 || (SMARTRENAME == 3 && !NameIsTaken(plain))) return plain;

  const clsFileInfo& target = environment_.file_info;
  const std::string extension = target.pFileNameExtension().empty() ? "" : "." + target.pFileNameExtension();
  const CalendarDay day = target.WriteDay();
  char date[32];
  std::snprintf(date, sizeof date, "_%04d%02u%02u", day.year, day.month, day.day);
  const std::string stem = prefix + target.pFileNameNoExt() + date;

  std::string candidate = stem + extension;
  std::int16_t counter = 1;  // sixteen bits: it goes on with negative numbers after 32767
  while (NameIsTaken(candidate)) {
    candidate = stem + "_" + std::to_string(counter) + extension;
    counter = static_cast<std::int16_t>(counter + 1);
    if (counter == 1) return plain;  // all 65,536 names are taken; the operation will find the collision
  }
  return candidate;
}

}  // namespace quendle
