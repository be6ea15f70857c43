#include "settings/setting_keys.h"

#include <algorithm>

#include "base/text.h"
#include "resources/string_table.h"
#include "support/temp_folder.h"

namespace quendle {
namespace {

// The last cells of the row in which a table of the text names the key: what it counts as where it is missing, and for
// the standard settings what a new file holds.
std::string ExpectedCells(const SettingKey& key, bool in_profile) {
  if (in_profile) return "| " + std::to_string(key.missing_in_profile) + " |";
  const auto made = InitialValues(SettingsFile::kStandard);
  const auto value = std::find_if(made.begin(), made.end(),
                                  [&key](const InitialValue& row) { return row.name == key.name; });
  return "| " + std::to_string(key.missing_in_settings) + " | " + (value == made.end() ? "" : value->value) +
         " |";
}

GTEST_TEST(SettingKeys, TheManualSaysWhatTheTableSays) {
  for (const char* manual : {"manual.md", "manual.ja.md"}) {
    const std::string text = test::ReadFile(std::string(QUENDLE_DOCS) + "/" + manual);
    const std::size_t middle = text.find("\n`mover.ini`");
    ASSERT_NE(middle, std::string::npos) << manual;
    for (const SettingKey& key : SettingKeys()) {
      for (const bool in_profile : {true, false}) {
        if (!key.IsIn(in_profile ? SettingsFile::kProfile : SettingsFile::kStandard)) continue;
        const std::string name = std::string("`").append(LoadText(key.name)).append("`");
        SCOPED_TRACE(std::string(manual) + ": " + name);
        const std::string table = in_profile ? text.substr(0, middle) : text.substr(middle);
        std::size_t row = table.find("\n| " + name);
        if (row == std::string::npos) row = table.find("、" + name);
        if (row == std::string::npos) row = table.find(", " + name);
        ASSERT_NE(row, std::string::npos);
        const std::string line = table.substr(row, table.find('\n', row + 1) - row);
        const bool is_number = key.kind == SettingKey::Kind::kFlag || key.kind == SettingKey::Kind::kNumber;
        EXPECT_TRUE(!is_number || line.ends_with(ExpectedCells(key, in_profile))) << line;
      }
    }
  }
}

}  // namespace
}  // namespace quendle
