#include "base/text.h"

#include <algorithm>

#include "base/modSystem.h"
#include "resources/string_table.h"

namespace quendle {

std::string LoadText(int id) {
  const StringTableEntry* end = kStringTable + kStringTableSize;
  const StringTableEntry* found = std::lower_bound(
      kStringTable, end, id, [](const StringTableEntry& entry, int wanted) { return entry.id < wanted; });
  if (found == end || found->id != id) ProgrammingError("no such text");
  return found->text;
}

std::string LoadText(int id, const std::vector<std::string>& values) {
  const std::string pattern = LoadText(id);
  std::string text;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    const std::size_t value = i + 1 < pattern.size() ? static_cast<std::size_t>(pattern[i + 1] - '1') : 0;
    if (pattern[i] == '%' && i + 1 < pattern.size() && value < values.size()) {
      text += values[value];
      ++i;
    } else {
      text += pattern[i];
    }
  }
  return text;
}

std::string LoadText(const Reason& reason) {
  return Sentence(reason, Language::kJapanese);
}

}  // namespace quendle
