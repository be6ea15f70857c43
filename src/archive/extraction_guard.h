// Which entries of an archive may not go where they would, because the archive or the program stands on what is there.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/extraction/extraction_folder.h"

namespace quendle {

class ExtractionGuard {
 public:
  // `archive_files` is what the archive is read from; `program_files` are files and folders that the program needs.
  // Both are looked at now. `destination` may not exist yet.
  ExtractionGuard(const std::string& destination, const std::vector<std::string>& archive_files,
                  const std::vector<std::string>& program_files);

  // Why nothing may be made at the safe path below the destination, with the path in it; empty where it may as far as this
  // is about. `*is_free`: for certain nothing is there now.
  Reason Problem(const std::string& path, bool* is_free);

 private:
  bool IsBelowLacking(std::string_view path) const;
  void FindLacking(const std::string& path);

  std::unique_ptr<platform::ExtractionFolder> folder_;  // null where there is nothing to guard
  std::string missing_;                                 // what the destination still lacks below it
  // Of the folders on the way of the last path: the last that was there, and the one that was not, in which nothing is.
  std::string there_;
  std::string lacking_;
};

}  // namespace quendle
