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

}  // namespace quendle
