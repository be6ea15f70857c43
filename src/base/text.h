// Look-up in the string table.
#pragma once

#include <string>

namespace quendle {

// The text of an identifier of resources/string_table.h. An identifier that is not in the table is a
// programming error.
//   text_id::kItemsFile => "items.ini"
std::string LoadText(int id);

}  // namespace quendle
