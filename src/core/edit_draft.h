// What the editor works on, without its widgets: the keys of one use as they were read and as they are now.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/result.h"
#include "settings/clsIniFile.h"
#include "settings/clsPropDefault.h"
#include "settings/clsPropItem.h"

namespace quendle {

// Keys are named by their identifiers in the string table (text_id::kPattern ...). One that the use does not have is a
// programming error.
class EditDraft {
 public:
  struct Stores {
    const clsPropItem& items;
    const clsPropDefault& standard;
    const clsPropDefault& test;
  };

  // `mode` is one of clsPropItem's kEditing... values, `title` that of the profile for the two that edit one. Reads
  // the file; what a profile inherits is read whenever it is asked for.
  EditDraft(std::int16_t mode, std::string title, const Stores& stores);

  std::int16_t Mode() const { return mode_; }
  bool IsProfile() const;
  const std::string& Title() const { return title_; }
  std::vector<int> Keys() const;
  bool Has(int key) const;

  // Texts and folders as they are typed; empty stands for missing.
  const std::string& Text(int key) const;
  void SetText(int key, const std::string& text);
  // Numbers and flags (0 or 1) as they count: what is missing or out of range reads as the settings read it, and what
  // is inherited as the standard settings say.
  int Number(int key) const;
  void SetNumber(int key, int number);
  // Does the profile leave this to the standard settings? When it stops doing so, what it has no value of its own for
  // begins with the inherited one.
  bool IsInherited(int key) const;
  // What an empty folder stands for.
  std::string InheritedFolder(int key) const;
  // A folder that was picked, with the profile's name appended where the settings want that.
  std::string PickedFolder(const std::string& folder) const;

  // What saving writes for a key: folders hold no characters that names may not have.
  std::string Stored(int key) const;
  struct Problem {
    std::string text;           // in the language of the windows
    bool can_be_saved = false;  // if the user insists
  };
  std::optional<Problem> ProblemOf(int key) const;

  // The keys that saving would write.
  std::vector<int> ChangedKeys() const;

  // What became of the file since it was read. Keys that only others changed have their new values afterwards, and are
  // listed by ChangedByOthers; for each of `conflicts` the user has to settle whose value holds. Of a profile that is
  // gone, or a title that is taken, no key is looked at.
  struct Comparison {
    bool is_gone = false;         // the profile was removed or renamed
    bool is_title_taken = false;  // the new profile has the title of another
    struct Conflict {
      int key;
      std::string theirs;
    };
    std::vector<Conflict> conflicts;
  };
  Comparison CompareWithFile();
  void Settle(const Comparison::Conflict& conflict, bool mine);
  // The profile that is gone is to be made anew, with everything in it.
  void BecomeNew();
  const std::vector<int>& ChangedByOthers() const { return changed_by_others_; }

  // Writes the keys that changed, and those only; a new profile exists afterwards even if none did. Stops at the first
  // that cannot be written: what was written before is no change any more, the rest still is.
  platform::Result Save();
  // Those that were written so far.
  const std::vector<int>& SavedKeys() const { return saved_keys_; }
  // Was anything?
  bool IsSaved() const { return !saved_keys_.empty(); }

 private:
  struct Value {
    int key;
    std::string original;  // in the file, as far as the user knows
    std::string current;
    std::string seed;  // inherited, when that became the current one
  };

  const Value& Find(int key) const;
  Value& Find(int key);
  std::string Read(int key) const;
  bool IsTitleInFile() const;
  int Meaning(int key, const std::string& text) const;
  const clsPropDefault& Settings() const;
  bool IsChanged(const Value& value) const;
  void SeedOwnValues(bool on);
  platform::Result Write(Value* value);

  std::int16_t mode_;
  std::string title_;
  Stores stores_;
  clsIniFile ini_;
  std::vector<Value> values_;
  std::vector<int> changed_by_others_;
  std::vector<int> saved_keys_;
};

}  // namespace quendle
