// Which entries of an archive are extracted, and into which folder each goes. Names have "/" between their
// parts; a folder's ends with "/". Letter case never counts.
#pragma once

#include <string>
#include <vector>

#include "base/regex.h"

namespace quendle {

// Do all names begin with one and the same top folder? False without names.
//   "TOP/A", "top/s/B" => true    "TOP/A", "B" => false    "A" => false    "TOP/" => true
bool HaveOneTopFolder(const std::vector<std::string>& names);

// What INCLUDE and EXCLUDE, patterns separated by ";", let through. With an empty first include pattern all
// is included; folder entries never are by a pattern. A pattern with "/" is for the whole name, any other for
// its last part. A pattern that is invalid, or takes too long on a name, fits nothing; whoever acts on the answers asks for
// Problem after the last one.
//   include ".*\.txt": "A/B.TXT" passes, "A/B.DAT" and "A/" do not
//   exclude "a/.*":    "A/B" does not pass, "B/A" does
class EntryFilter {
 public:
  EntryFilter(const std::string& include, const std::string& exclude);
  bool Passes(const std::string& name) const;

  // Why a pattern fits nothing, as one line with the pattern and the key that it stands in; empty while all can be used.
  //   include "a;(" => "the pattern ( of Include cannot be used: missing closing parenthesis at offset 1"
  Reason Problem() const;

 private:
  struct Pattern {
    std::string text;
    const char* key;
    Regex expression;
    bool for_whole_name;
  };
  static std::vector<Pattern> Compile(const std::string& patterns, const char* key);
  const Pattern* Unusable() const;
  static bool AnyFits(const std::vector<Pattern>& patterns, const std::string& upper);

  bool includes_all_ = true;
  std::vector<Pattern> include_;
  std::vector<Pattern> exclude_;
};

// Entries that are extracted by one call.
struct ExtractionGroup {
  std::string sub_folder;  // below the destination, "/" between its parts; empty: the destination itself
  std::vector<std::string> names;
};

// With `flat`, runs of names of one folder in the sorted list, so that a folder may come up again, without the
// top folder; a sub-folder is spelled as in its group's first name. Otherwise one group with all names. None
// without names.
//   flat, "T/A", "T/S/B", "T/Z", "T/C" => "": T/A, T/C; "S": T/S/B; "": T/Z
std::vector<ExtractionGroup> GroupEntries(std::vector<std::string> names, bool flat);

}  // namespace quendle
