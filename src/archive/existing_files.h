// The files that are where an extraction writes to: which of them it would replace, and which it has replaced.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/entries/entry_status.h"

namespace quendle {

// Files that an extraction replaces, or has replaced; each counts once.
struct Replacements {
  std::size_t sure = 0;    // are replaced, or were
  std::size_t unsure = 0;  // planned: whether the entry is newer cannot be told from the list
  std::size_t asked = 0;   // planned: the user is asked about them
  std::vector<std::string>
      files;  // the first of them all, at most kMostNamed: full paths in the order of the extraction
  bool is_whole = true;  // planned: false when there was no time to look everywhere, and there may be more

  static constexpr std::size_t kMostNamed = 10;
  std::size_t All() const { return sure + unsure + asked; }
};

// What becomes of such a file. Where several entries go to it, the last of their fates in this order counts.
enum class Fate : std::uint8_t { kKept, kUnsure, kAsked, kReplaced };

// By the rule that only older files are replaced. `entry_time` is date << 16 | time of an ArchiverEntry, 0 when the library
// does not tell. It counts in two seconds and on the local clock, which in one hour of a year shows the same twice: where
// that decides, nobody can tell.
Fate FateByTime(std::uint32_t entry_time, const platform::EntryStatus& existing);

class ExistingFiles {
 public:
  // To be called before the extraction, for each entry: what is at the place that the entry goes to.
  void Note(const std::string& path, const platform::EntryStatus& existing, Fate fate);

  // By what was noted.
  Replacements Foretold() const;

  // Those that are not any more what they were when they were noted. One that is gone has not been replaced.
  Replacements Found() const;

 private:
  struct File {
    std::string path;
    platform::EntryStatus status;
    Fate fate;
  };
  static void Name(const File& file, Replacements* replacements);

  std::vector<File> files_;
  std::unordered_map<std::string, std::size_t> places_;  // of `files_`
};

}  // namespace quendle
