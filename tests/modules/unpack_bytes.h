// Archives that a test has made in memory, read by their family.
#pragma once

#include "support/archives.h"
#include "support/temp_folder.h"

namespace quendle::test {

inline UnpackedArchive UnpackBytes(const modules::Family& family, const std::string& bytes,
                                   const std::vector<std::string>& passwords = {},
                                   const std::string& charset = "") {
  const TempFolder folder;
  WriteFile(folder / "a", bytes);
  return Unpack(family, folder / "a", passwords, charset);
}

}  // namespace quendle::test
