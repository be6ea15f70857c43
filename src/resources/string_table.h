// Every text that the windows show and every name in the settings files, by name.
#pragma once

namespace quendle {

enum class TextId : int {
#define QUENDLE_TEXT(name, number, japanese) name = (number),
#include "resources/string_table.inc"
#undef QUENDLE_TEXT
};

// In UTF-8, as it stands in the table. A value that the table does not have is a programming error, for which the
// answer is null.
const char* TextOf(TextId id);

}  // namespace quendle
