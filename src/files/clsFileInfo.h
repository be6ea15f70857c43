// What is known of one existing file or folder: its path with every component spelled as the file system
// lists it, the parts of that path, and the time of its last change.
#pragma once

#include <cstdint>
#include <string>

#include "platform/entries/entry_status.h"
#include "platform/entries/paths.h"

namespace quendle {

// A day of the local calendar.
struct CalendarDay {
  int year = 0;
  unsigned month = 0;
  unsigned day = 0;
};

class clsFileInfo {
 public:
  // Empties the five strings.
  void Class_Initialize();

  // Reads the entry at `path`, which may be relative. False, with all strings empty, when there is none; a
  // path that ends in a separator is never found. When the entry exists but a folder above it cannot be read,
  // the answer is true and the strings are empty.
  bool SetFilename(const std::string& path);

  // Why SetFilename was false.
  const platform::Result& LastFailure() const { return last_failure_; }

  // Of /docs/A.B.C:
  const std::string& pFilePathLong() const { return path_; }            // "/docs/A.B.C"
  const std::string& pFileNameLong() const { return name_; }            // "A.B.C"
  const std::string& pFolderPathLong() const { return folder_; }        // "/docs"; "" directly below the root
  const std::string& pFileNameNoExt() const { return base_; }           // "A.B"; "" for a name without a dot
  const std::string& pFileNameExtension() const { return extension_; }  // "C"; the whole name without a dot

  // Of the entry itself, after SetFilename was true; a link is not followed.
  const platform::EntryStatus& Status() const { return status_; }

  // Last write in local time: days since 30 December 1899, the time of day as fraction. Only valid after
  // SetFilename was true; likewise the day it falls on.
  double pTimeWrite() const;
  CalendarDay WriteDay() const;

 private:
  std::string path_;
  std::string name_;
  std::string folder_;
  std::string base_;
  std::string extension_;
  platform::EntryStatus status_;
  std::int64_t local_write_seconds_ = 0;
  platform::Result last_failure_;
};

}  // namespace quendle
