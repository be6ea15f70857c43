// Changes to the bytes of an INI file, in memory. What is refused, and where new lines go, stands in
// platform/ini/profile.h; bytes of lines that a change does not concern stay as they are.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/ini/profile.h"
#include "reasons/result.h"

namespace quendle::platform {

Result SetKey(std::string_view section, std::string_view key, std::string_view value, std::string* bytes);
Result RemoveSections(const std::vector<std::string>& sections, std::string* bytes);
Result SetBody(std::string_view section, std::string_view body, std::string* bytes);
Result RenameFirstSection(std::string_view old_name, std::string_view new_name, std::string* bytes);
Result ArrangeSections(const SectionOrder& order, std::string* bytes);

}  // namespace quendle::platform
