// The list of profiles without its widgets: what its rows show, which of them a filter and a name on trial
// leave or mark, and the commands that change the store. Commands work by title and look at the store as it
// is at that moment, since other programs may have edited it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/regex.h"
#include "core/action_form.h"
#include "reasons/result.h"
#include "settings/clsPropDefault.h"
#include "settings/clsPropItem.h"
#include "settings/run_settings.h"

namespace quendle {

// Why no profile may have this title, as a sentence for the user; empty when one may. Whether another one has
// it is not looked at.
std::string TitleProblem(const std::string& title);

struct ProfileRow {
  std::string title;
  std::string pattern;
  std::int16_t action = 0;       // as in settings/action_steps.h
  bool inherits_action = false;  // from the standard settings

  // What becomes of each action, counted as in ActionView: extract, move, copy.
  struct Folder {
    std::string path;
    bool is_inherited = false;
    bool is_used = false;  // the action is ticked
  };
  std::array<Folder, kActionRows> folders;
};

// What a name on trial makes of a profile.
struct NameMatch {
  enum class Kind { kNotTested, kMatches, kPartOnly, kNoMatch, kError };
  Kind kind = Kind::kNotTested;
  int rank = 0;        // of those that match, from 1
  std::string reason;  // of an error, as PatternProblem tells it
};

class ProfileList {
 public:
  ProfileList(clsPropItem& items, const clsPropDefault& standard) : items_(items), standard_(standard) {}

  // Reads the store as it is now. A failure says why there are no rows (RunSettings::Read); no file is none.
  platform::Result Read();

  // What the user should mend in what was read, in the language of the windows; empty: nothing. That is why whole
  // sections are not rewritten, or else why the first profile is not acted on that is not.
  const std::string& Problem() const { return problem_; }

  const std::vector<ProfileRow>& Rows() const { return rows_; }  // in the store's order

  // The rows whose title, pattern or one of whose folders in use contains the text, without regard to case.
  std::vector<std::size_t> Filtered(const std::string& text) const;

  // Tries every pattern on a file name; empty: none is on trial any more. Another Read tries the name again.
  void TestName(const std::string& name);
  const std::string& TestedName() const { return tested_name_; }
  int MatchCount() const { return match_count_; }
  NameMatch MatchOf(std::size_t row) const;

  // Fails when no profile has a title that is spelled like that (any more).
  platform::Result CheckThere(const std::string& title) const;

  // Why a profile may not be given that title, for the user; empty when it may. `old_title`: the profile that
  // has that title now, which may be spelled anew.
  std::string NewTitleProblem(const std::string& title, const std::string& old_title = "") const;

  // A free title for a copy: "a" => "a (2)", "a (2)" => "a (3)"
  std::string TitleForCopy(const std::string& title) const;

  // Each fails as CheckThere does, and leaves the store sorted.
  platform::Result Rename(const std::string& title, const std::string& new_title);
  platform::Result Duplicate(const std::string& title, const std::string& new_title);

  // All that are still there, or after a failure none.
  platform::Result Remove(const std::vector<std::string>& titles);

  // Puts the store in order after a profile was added.
  platform::Result Sort();

 private:
  void TakeRows(const SettingsSnapshot& snapshot);
  std::vector<std::string> Titles() const;
  const Regex& ExpressionOf(std::size_t row) const;

  clsPropItem& items_;
  const clsPropDefault& standard_;
  std::vector<ProfileRow> rows_;
  std::string problem_;
  std::string tested_name_;
  int match_count_ = 0;
  std::vector<int> ranks_;  // beside rows_ while a name is on trial: 0 for those that do not match
  mutable std::vector<std::string> searched_;              // made when they are needed
  mutable std::vector<std::optional<Regex>> expressions_;  // the same
};

}  // namespace quendle
