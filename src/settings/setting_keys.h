// Every key of the settings files: what kind of value it has, in which files it stands, what it counts as where
// it is missing. Reading, the editor, the list of profiles and the documentation go by this one table.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "resources/string_table.h"

namespace quendle {

enum class SettingsFile : unsigned {
  kProfile = 1,   // items.ini, a section for each profile
  kStandard = 2,  // mover.ini
  kTest = 4,      // test.ini
};

struct SettingKey {
  enum class Kind { kText, kFolder, kFlag, kNumber };
  // When a profile takes the value of the standard settings.
  enum class Inherited { kNever, kWhenEmpty, kWithoutId };

  TextId name;
  Kind kind;
  unsigned files;  // those that have it, as bits
  Inherited inherited = Inherited::kNever;
  // Of a number or flag: the range, and what a missing or empty value counts as. Texts and folders are empty then.
  std::int16_t lowest = 0;
  std::int16_t highest = 0;
  std::int16_t missing_in_profile = 0;
  std::int16_t missing_in_settings = 0;

  bool IsIn(SettingsFile file) const { return (files & static_cast<unsigned>(file)) != 0; }
};

// In the order in which the editor shows and writes them.
std::span<const SettingKey> SettingKeys();

// A name that is no key's is a programming error.
const SettingKey& KeyOf(TextId name);

// What a stored text counts as: a flag by ToBoolean, a number when it lies in its range. In the settings only whole
// numbers do; a profile's are rounded, halves to the even neighbour. Nothing for what is out of range.
//   Action in settings: "6" => 6, "2.5" => nothing, "8" => nothing     in a profile: "2.5" => 2, "9" => nothing
std::optional<std::int16_t> NumberOf(const SettingKey& key, SettingsFile file, const std::string& text);

// What a newly made mover.ini or test.ini holds, in that order. A null value stands for the default destination.
struct InitialValue {
  TextId name;
  const char* value;
};
std::span<const InitialValue> InitialValues(SettingsFile file);

}  // namespace quendle
