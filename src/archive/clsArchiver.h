// Archives, as the dispatcher sees them: what type a file is, and extract it.
#pragma once

#include <cstdint>
#include <string>

namespace quendle {

class clsArchiver {
 public:
  virtual ~clsArchiver() = default;

  std::string pFileName;  // full path of the file to inspect or extract

  // The type of pFileName: 1 ZIP, 2 LZH, 3 CAB, 4 RAR, 5 7Z, 0 when no installed archiver library accepts it.
  // No library is bound in this version, so it is 0 for every file.
  virtual std::int16_t GetArcType() { return 0; }

  // Extracts pFileName, whose type is not 0, into `destination`. True when all that was to be extracted was.
  virtual bool mExtractArchive(const std::string& destination);
};

// The word for an archive type: 1 => "ZIP", ... 5 => "7Z", 0 => "".
const char* ArchiveTypeName(std::int16_t type);

}  // namespace quendle
