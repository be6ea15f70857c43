#include "core/profile_choice.h"

#include "base/modSystem.h"
#include "resources/string_table.h"

namespace quendle {

using Kind = ProfileChoice::Kind;

ProfileChoice ChooseProfile(const clsMover& mover, const std::optional<std::string>& named) {
  if (named) return {Kind::kProfile, *named};
  const std::vector<std::string>& matches = mover.Matches();
  if (matches.size() > 1) return {Kind::kAmbiguous};
  if (matches.size() == 1) return {Kind::kProfile, matches.front()};
  const bool is_tested = mover.ARCHIVETYPE != 0 && mover.Settings().Standard().Flag(TextId::kTest);
  return {is_tested ? Kind::kTestSettings : Kind::kNone};
}

bool FillFromChoice(const ProfileChoice& choice, clsMover* mover, Reason* why) {
  if (!choice.IsClear()) ProgrammingError("nothing is chosen that could act");
  return choice.kind == Kind::kProfile ? mover->FillFromProfile(choice.title, why)
                                       : mover->FillFromTestSettings(why);
}

}  // namespace quendle
