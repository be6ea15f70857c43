// What the editor works on, without its widgets: the keys of one use as they were read and as they are now.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/edit_mode.h"
#include "reasons/result.h"
#include "settings/clsIniFile.h"
#include "settings/clsPropDefault.h"
#include "settings/clsPropItem.h"

namespace quendle {

// Keys are known by their names in the string table (TextId::kPattern ...). One that the use does not have
// is a programming error.
class EditDraft {
 public:
  struct Stores {
    const clsPropItem& items;
    const clsPropDefault& standard;
    const clsPropDefault& test;
  };

  // `title` is that of the profile for the two modes that edit one.
  // Reads the file; what a profile inherits is read whenever it is asked for.
  EditDraft(EditMode mode, std::string title, const Stores& stores);

  EditMode Mode() const { return mode_; }
  bool IsProfile() const;
  const std::string& Title() const { return title_; }
  std::vector<TextId> Keys() const;
  bool Has(TextId key) const;

  // Texts and folders as they are typed; empty stands for missing.
  const std::string& Text(TextId key) const;
  void SetText(TextId key, const std::string& text);
  // Numbers and flags (0 or 1) as they count: what is missing or out of range reads as the settings read it,
  // and what is inherited as the standard settings say.
  int Number(TextId key) const;
  void SetNumber(TextId key, int number);
  // Does the profile leave this to the standard settings? When it stops doing so, what it has no value of its
  // own for begins with the inherited one.
  bool IsInherited(TextId key) const;
  // What an empty folder stands for.
  std::string InheritedFolder(TextId key) const;
  // A folder that was picked, with the profile's name appended where the settings want that.
  std::string PickedFolder(const std::string& folder) const;

  // What saving writes for a key: folders hold no characters that names may not have.
  std::string Stored(TextId key) const;
  struct Problem {
    std::string text;           // in the language of the windows
    bool can_be_saved = false;  // if the user insists
  };
  std::optional<Problem> ProblemOf(TextId key) const;

  // The keys that saving would write.
  std::vector<TextId> ChangedKeys() const;

  // What became of the file since it was read, and the user has to settle: for each of `conflicts` whose
  // value holds. Of a profile that is gone, or a title that is taken, no key is looked at.
  struct Comparison {
    bool is_gone = false;         // the profile was removed or renamed
    bool is_title_taken = false;  // the new profile has the title of another
    struct Conflict {
      TextId key;
      std::string theirs;
    };
    std::vector<Conflict> conflicts;
    bool IsSettled() const { return !is_gone && !is_title_taken && conflicts.empty(); }
  };
  void Settle(const Comparison::Conflict& conflict, bool mine);
  // The profile that is gone is to be made anew, with everything in it.
  void BecomeNew();

  // Compares with the file and, if there is nothing to settle, writes the keys that changed, and those only,
  // all at once or, after a failure, none; a new profile exists afterwards even if none did. No other copy of
  // this program writes between the two. Keys that only others changed have their new values afterwards.
  // Having to settle something is no failure, but nothing is written.
  platform::Result Save(Comparison* comparison);
  std::vector<TextId> ChangedByOthers() const;  // and not by the user since
  // Was anything written?
  bool IsSaved() const { return is_saved_; }

 private:
  struct Value {
    TextId key;
    std::string original;  // in the file, as far as the user knows
    std::string current;
    std::string seed;  // inherited, when that became the current one
    bool is_changed_by_others = false;
  };

  const Value& Find(TextId key) const;
  Value& Find(TextId key);
  std::string Read(TextId key) const;
  bool IsTitleInFile() const;
  int Meaning(TextId key, const std::string& text) const;
  const clsPropDefault& Settings() const;
  bool IsChanged(const Value& value) const;
  bool IsToBeWritten(const Value& value) const;
  void SeedOwnValues(bool on);
  Comparison CompareWithFile();
  clsIniFile::KeysAndValues Unsaved() const;
  void MarkSaved();

  EditMode mode_;
  std::string title_;
  Stores stores_;
  clsIniFile ini_;
  std::vector<Value> values_;
  bool is_saved_ = false;
};

}  // namespace quendle
