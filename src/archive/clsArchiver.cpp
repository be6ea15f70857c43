#include "archive/clsArchiver.h"

#include "base/modSystem.h"

namespace quendle {

bool clsArchiver::mExtractArchive(const std::string&) {
  ProgrammingError("extraction of a file that no archiver library accepts");
}

const char* ArchiveTypeName(std::int16_t type) {
  constexpr const char* kNames[] = {"", "ZIP", "LZH", "CAB", "RAR", "7Z"};
  if (type < 0 || type > 5) ProgrammingError("archive type outside 0 to 5");
  return kNames[type];
}

}  // namespace quendle
