// Look-up in the string table.
#pragma once

#include <string>
#include <vector>

#include "reasons/reason.h"

namespace quendle {

// The text of an identifier of resources/string_table.h. An identifier that is not in the table is a
// programming error.
//   text_id::kItemsFile => "items.ini"
std::string LoadText(int id);

// The same with "%1", "%2" ... replaced.
std::string LoadText(int id, const std::vector<std::string>& values);

// The sentence of a reason, in the language that these texts are in.
//   why::kThereAlready => "すでにそこにあります"
std::string LoadText(const Reason& reason);

}  // namespace quendle
