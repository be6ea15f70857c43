// What acts for a path: a profile, or the settings that stand in for one.
#pragma once

#include <optional>
#include <string>

#include "core/clsMover.h"

namespace quendle {

struct ProfileChoice {
  enum class Kind {
    kProfile,
    kTestSettings,  // an archive that no profile matches, where the settings want that
    kAmbiguous,     // several profiles match and none was named
    kNone,
  };
  Kind kind = Kind::kNone;
  std::string title = {};  // of a profile

  // Does something act without anybody being asked?
  bool IsClear() const { return kind == Kind::kProfile || kind == Kind::kTestSettings; }
};

// Of the dispatcher's current path, after GetAccordantTitles. A profile that was `named` is taken whether its pattern
// matches or not.
ProfileChoice ChooseProfile(const clsMover& mover, const std::optional<std::string>& named);

// Fills the dispatcher's state by a clear choice. False, with the answer in `*why`, when it must not be acted on.
bool FillFromChoice(const ProfileChoice& choice, clsMover* mover, Reason* why);

}  // namespace quendle
