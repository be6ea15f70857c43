// What settings and profiles count as: stored texts with their defaults, ranges and inheritance applied. The texts may
// come from a file as it is now (clsPropItem, clsPropDefault) or from one moment of it (RunSettings).
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "settings/setting_keys.h"

namespace quendle {

// The text that a section has for the key of that name; empty when it has none.
using StoredText = std::function<std::string(TextId name)>;

// The section "General" of mover.ini or test.ini. A key that the standard settings do not have is a programming error.
class SettingsValues {
 public:
  // `default_destination`: what a folder counts as that nobody has set.
  SettingsValues(StoredText stored, std::string default_destination);

  std::string Text(TextId name) const;  // also of a folder
  std::int16_t Number(TextId name) const;
  bool Flag(TextId name) const { return Number(name) != 0; }

  const std::string& DefaultDestination() const { return default_destination_; }

 private:
  StoredText stored_;
  std::string default_destination_;
};

// One profile. A key that profiles do not have is a programming error.
class ProfileValues {
 public:
  ProfileValues(StoredText stored, SettingsValues standard);

  std::string Text(TextId name) const;  // also of a folder, which is the standard settings' when it is empty
  std::int16_t Number(TextId name) const;
  bool Flag(TextId name) const { return Number(name) != 0; }

  // Does the standard settings' value count, since the profile has no ID of its own, leaves a folder empty, or has a
  // number that is out of range?
  bool IsInherited(TextId name) const;

  // The text in the file, whether it counts or not.
  std::string Stored(TextId name) const { return stored_(name); }

 private:
  std::optional<std::int16_t> OwnNumber(TextId name) const;

  StoredText stored_;
  SettingsValues standard_;
};

}  // namespace quendle
