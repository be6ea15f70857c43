// The user's profiles: one section each in items.ini, named by the profile's title.
//
// The object stands on one profile at a time, the one named by Title; every property reads from or writes to
// its section at once. For its behaviour (action, rename mode, extraction mode, smart make dir, open folder)
// a profile has values of its own or, while its ID flag is off, those of the standard settings; empty folders
// always fall back to the standard settings.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "settings/clsIniFile.h"
#include "settings/clsPropDefault.h"

namespace quendle {

// What a list shows of a profile. What it inherits from the standard settings is left open.
struct ProfileSummary {
  std::string title;
  std::string pattern;
  std::optional<std::int16_t> action;  // nothing: inherited
  std::string extract_to;              // empty: inherited, as are the following
  std::string move_to;
  std::string copy_to;
};

class clsPropItem {
 public:
  // What reading falls back on, asked for at each read, since the profile store is made before the settings.
  struct Fallbacks {
    std::function<const clsPropDefault&()> standard;
    std::function<const clsPropDefault&()> test;
    std::function<std::string()> target_base_name;  // the current target's name without its extension
  };

  clsPropItem(const std::string& application_folder, Fallbacks fallbacks);

  void DelSection(const std::string& title);
  void DelSections(const std::vector<std::string>& titles);  // all of them or, after a failure, none

  // All titles in ascending order (SortStrings), which is the order of profiles everywhere, and their number.
  std::int32_t EnumSection(std::vector<std::string>* titles) const;

  // All profiles in that order, each title once: of several sections only the first is ever read. The file is
  // read once, not once for each property.
  std::vector<ProfileSummary> Summaries() const;

  // Writes the keys of one profile under another title, which the caller has made sure no profile has.
  void CopySection(const std::string& title, const std::string& new_title);

  // Renames a profile in place; the caller has made sure that no profile has the new name.
  void RenameSection(const std::string& old_title, const std::string& new_title);

  // Rewrites items.ini with its sections in sorted order and without blank or stray lines.
  void OptimizeFile();

  std::string Title;     // the profile that the properties below read and write; empty: none
  std::string NEWTITLE;  // the title that the editor is to give

  // Who is using the store: the dispatcher says when it reads all profiles, the windows what the editor is
  // opened for. While the standard settings are edited, no profile is.
  static constexpr std::int16_t kNotEditing = 0;
  static constexpr std::int16_t kEditingStandard = 0;
  static constexpr std::int16_t kEditingProfile = 1;  // NEWTITLE is its title
  static constexpr std::int16_t kEditingNew = 2;      // NEWTITLE is to be its title
  static constexpr std::int16_t kEditingGeneral = 4;
  static constexpr std::int16_t kReadingAll = 5;
  static constexpr std::int16_t kEditingTest = 6;
  std::int16_t EDITMODE = kNotEditing;

  // Each pair of overloads below reads and writes one key of the section Title. The columns are the key and
  // what a missing or empty key reads as ("std": the standard settings' value).
  //
  //   pattern       Pattern       ""   regular expression for the whole file name
  //   EXTRACTTO     ExtractTo     std  see below
  //   MOVETO        MoveTo        std
  //   COPYTO        CopyTo        std
  //   INCLUDE       Include       ""   patterns separated by ";"
  //   EXCLUDE       Exclude       ""   patterns separated by ";"
  //   OPENFILE      OpenFile      ""   names separated by ";"
  //   ID            ID            0    1: the keys below count; 0: they all read as std
  //   ACTION        Action        0    outside 0 to 7 reads as std
  //   SMARTRENAME   SmartRename   1    outside 1 to 3 reads as std
  //   EXTRACTTYPE   ExtractType   1    outside 1 to 2 reads as std
  //   SMARTMAKEDIR  SmartMakeDir  0
  //   OPENDIR       OpenDir       0
  //
  // EXTRACTTO of the pseudo-profile "（なし）", which stands for a file without a profile, is the folder
  // named like the target below the test settings' folder: test folder /t and target data.zip => "/t/data".
  std::string pattern() const;
  void pattern(const std::string& value);
  std::string EXTRACTTO() const;
  void EXTRACTTO(const std::string& value);
  std::string MOVETO() const;
  void MOVETO(const std::string& value);
  std::string COPYTO() const;
  void COPYTO(const std::string& value);
  std::string INCLUDE() const;
  void INCLUDE(const std::string& value);
  std::string EXCLUDE() const;
  void EXCLUDE(const std::string& value);
  std::string OPENFILE() const;
  void OPENFILE(const std::string& value);
  bool ID() const;
  void ID(std::int16_t value);
  std::int16_t ACTION() const;
  void ACTION(std::int16_t value);
  std::int16_t SMARTRENAME() const;
  void SMARTRENAME(std::int16_t value);
  std::int16_t EXTRACTTYPE() const;
  void EXTRACTTYPE(std::int16_t value);
  bool SMARTMAKEDIR() const;
  void SMARTMAKEDIR(std::int16_t value);
  bool OPENDIR() const;
  void OPENDIR(std::int16_t value);

  const std::string& FileName() const { return ini_.pFileName; }

  // Why the last write did not succeed; no failure if it did.
  const platform::Result& LastFailure() const { return ini_.LastFailure(); }

 private:
  std::string Read(int key, const char* fallback) const;
  void Write(int key, const std::string& value);
  std::int16_t ReadOwn(int key, const char* fallback, std::int16_t lowest, std::int16_t highest,
                       std::int16_t (clsPropDefault::*standard)() const) const;
  bool ReadOwnFlag(int key, bool (clsPropDefault::*standard)() const) const;

  clsIniFile ini_;
  Fallbacks fallbacks_;
};

}  // namespace quendle
