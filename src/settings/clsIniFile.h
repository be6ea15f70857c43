// One INI file. Single keys and the bodies of sections are written by the profile functions
// (platform/ini/profile.h); whole sections are listed, renamed and put in order here. Lines and headers are those
// of whole sections in platform/ini/profile_lines.h; where those of single keys are others, everything that changes
// whole sections fails. Nothing is kept between calls but the failure of the last write.
//
// Functions that fill an array leave one empty element in it when they return 0.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "reasons/result.h"

namespace quendle {

class clsIniFile {
 public:
  std::string pFileName;  // full path; every function works on this file

  // The buffer for values in bytes, one of which is for the end: longer values are cut. Few sizes can be set;
  // others are changed to one of those.
  std::int32_t pBUFFER() const { return buffer_; }
  void pBUFFER(std::int32_t size);

  // False when the key could not be written; LastFailure says why.
  bool SetStr(const std::string& section, const std::string& key, const std::string& value);

  // Sets several keys, all at once or, after a failure (false), none. `choose` answers which while no other
  // copy of this program can write: what it reads is what will be changed. It must not write itself.
  using KeysAndValues = std::vector<std::pair<std::string, std::string>>;
  bool SetStrings(const std::string& section, const std::function<KeysAndValues()>& choose);

  // The default stands in for an empty value as well as for a missing one.
  std::string GetStr(const std::string& section, const std::string& key, const std::string& fallback) const;

  void DeleteSection(const std::string& section);
  void DeleteSections(const std::vector<std::string>& sections);  // all of them or, after a failure, none

  // The names of all headers in file order, duplicates included. None (0) when the first name is empty or the
  // file has only one line.
  std::int32_t EnumSection(std::vector<std::string>* names) const;

  // The lines of a section as they are. The name is compared with regard to case, unlike in all other
  // functions. A header in the last line of the file counts as a line of the section before it. None (0) when
  // the first is empty.
  std::int32_t EnumSectionItem(const std::string& section, std::vector<std::string>* items) const;

  // Changes the first header of the old name and nothing else; line breaks become "\r\n". Does nothing when
  // there is no such section. Whether there is a section of the new name already is not looked at. A new name
  // that SetStr refuses is refused.
  void RenameSection(const std::string& old_name, const std::string& new_name);

  // The lines of the first section of that name that are not empty, joined by "\r\n". The last line of the
  // file is not among them: it is taken for the empty one behind the last line break.
  std::string GetSectionData(const std::string& section) const;

  void SetSectionData(const std::string& section, const std::string& body);

  // All lines of the file; the answer is the greatest index. A file without line breaks has one empty line.
  std::int32_t GetAllDataByArray(std::vector<std::string>* lines) const;

  // Rewrites the file with nothing in it but its sections, in the code page where that holds the text: each
  // name once (the first section wins), no blank lines, sorted by name if asked for. Does nothing when
  // EnumSection lists none.
  void OptimizeFile(bool sort);

  // Why the last of the functions that write did not; no failure if it did.
  const platform::Result& LastFailure() const { return last_failure_; }

 private:
  std::int32_t buffer_ = 1024;
  platform::Result last_failure_;
};

// The names that EnumSection lists of a file with that text, which has no mark.
std::vector<std::string> SectionNames(std::string_view text);

// A value in a file as GetStr of a new object reads it: cut to its buffer, and at the first NUL.
std::string AsRead(std::string_view value);

// Is a value so long that the buffer of a new object may have cut it, or would cut it once it is stored?
bool MayBeCut(const std::string& value);

}  // namespace quendle
